#include <framework_utility/imageio/image_metadata.h>

#include <framework_utility/platform/imageio/metadata/property_keys.h>
#include <framework_utility/platform/locale/locale.h>
#include <framework_utility/platform/locale/time_zone.h>

#include <gtest/gtest.h>

#include <chrono>
#include <type_traits>
#include <utility>

namespace FrameworkUtility {
namespace {

// Of a temporary, nothing refers to it.
static_assert(!std::is_reference_v<decltype(std::declval<KvImageMetadata>().properties())>);
static_assert(
    !std::is_reference_v<decltype(std::declval<KvImageMetadata>().auxiliaryDataInfoDepth())>);
static_assert(
    !std::is_reference_v<decltype(std::declval<KvImageMetadata>().auxiliaryDataInfoDisparity())>);
static_assert(
    !std::is_reference_v<decltype(std::declval<KvImageMetadata>().auxiliaryDataInfoMatte())>);
static_assert(!std::is_reference_v<decltype(std::declval<KvImageMetadata>().videoCodecName())>);

KvImageMetadata metadataWith(std::string_view dictionary, Dictionary entries) {
  return KvImageMetadata::withProperties(Dictionary{{dictionary, std::move(entries)}});
}

TEST(KvImageMetadataTest, WithoutPropertiesTheyAreEmpty) {
  EXPECT_EQ(KvImageMetadata().properties(), Dictionary());
  EXPECT_EQ(KvImageMetadata::withProperties(std::nullopt).properties(), Dictionary());

  const KvImageMetadata both =
      KvImageMetadata::withProperties(std::nullopt, Dictionary{{"a", 1}}, Dictionary{{"b", 2}});
  EXPECT_EQ(both.auxiliaryDataInfoDepth(), (Dictionary{{"a", 1}}));
  EXPECT_EQ(both.auxiliaryDataInfoDisparity(), (Dictionary{{"b", 2}}));
  EXPECT_EQ(both.auxiliaryDataInfoMatte(), std::nullopt);
}

TEST(KvImageMetadataTest, SizesTruncateAndCountAMissingSideAsZero) {
  KvImageMetadata metadata =
      KvImageMetadata::withProperties(Dictionary{{"PixelWidth", 40.9}, {"PixelHeight", "30"}});
  EXPECT_EQ(metadata.width(), Number(40.9));
  EXPECT_EQ(metadata.height(), std::nullopt);
  EXPECT_EQ(metadata.size(), (Size{40, 0}));
}

TEST(KvImageMetadataTest, OnlyFiveToEightExchangeTheSides) {
  for (int orientation = 0; orientation <= 9; ++orientation) {
    KvImageMetadata metadata =
        KvImageMetadata::withProperties(Dictionary{{"PixelWidth", 4000}, {"PixelHeight", 3000}});
    metadata.setOrientation(orientation);
    const bool exchanged = orientation >= 5 && orientation <= 8;
    EXPECT_EQ(metadata.sizeOriented(), (exchanged ? Size{3000, 4000} : Size{4000, 3000}))
        << orientation;
  }
}

TEST(KvImageMetadataTest, OrientationFallsBackToTheTiffDictionary) {
  struct Case {
    const char* what;
    Dictionary properties;
    std::optional<Number> orientation;
    std::uint32_t exif;
  };
  for (const Case& c :
       {Case{"none", {}, std::nullopt, 1},
        Case{"top level", {{"Orientation", 6}, {"{TIFF}", Dictionary{{"Orientation", 3}}}}, 6, 6},
        Case{"TIFF", {{"{TIFF}", Dictionary{{"Orientation", 3}}}}, 3, 3},
        Case{"a text does not count",
             {{"Orientation", "6"}, {"{TIFF}", Dictionary{{"Orientation", 3}}}},
             3,
             3},
        Case{"no TIFF dictionary", {{"{TIFF}", 3}}, std::nullopt, 1},
        Case{"not checked", {{"Orientation", -1}}, -1, 0xFFFFFFFF}}) {
    SCOPED_TRACE(c.what);
    const KvImageMetadata metadata = KvImageMetadata::withProperties(c.properties);
    EXPECT_EQ(metadata.orientation(), c.orientation);
    EXPECT_EQ(metadata.exifOrientation(), c.exif);
  }
}

TEST(KvImageMetadataTest, IsoIsTheSpeedElseTheFirstRating) {
  struct Case {
    const char* what;
    Dictionary exif;
    std::optional<Number> iso;
  };
  const Value ratings(Array{100, 200});
  for (const Case& c :
       {Case{"speed first", {{"ISOSpeed", 64}, {"ISOSpeedRatings", ratings}}, 64},
        Case{"a speed of another type", {{"ISOSpeed", "64"}, {"ISOSpeedRatings", ratings}}, 100},
        Case{"ratings that are no list", {{"ISOSpeedRatings", 100}}, std::nullopt},
        Case{"no rating", {{"ISOSpeedRatings", Value(Array{})}}, std::nullopt},
        Case{"a rating that is a text",
             {{"ISOSpeedRatings", Value(Array{"100", 200})}},
             std::nullopt}}) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(metadataWith("{Exif}", c.exif).iso(), c.iso);
  }
}

TEST(KvImageMetadataTest, ReadsTheWellKnownEntries) {
  const KvImageMetadata metadata = KvImageMetadata::withProperties(Dictionary{
      {"FileSize", 12345},
      {"{TIFF}", Dictionary{{"Make", "Tervix"}, {"Model", "One"}, {"Software", "Pelvar"}}},
      {"{Exif}", Dictionary{{"FNumber", 1.8}, {"FocalLength", 26}, {"UserComment", "hm"}}},
      {"{MakerApple}", Dictionary{{17, "not this"}, {"17", "LIVE"}}}});
  EXPECT_EQ(metadata.fileSize(), Number(12345));
  EXPECT_EQ(metadata.cameraMake(), "Tervix");
  EXPECT_EQ(metadata.cameraModel(), "One");
  EXPECT_EQ(metadata.software(), "Pelvar");
  EXPECT_EQ(metadata.fNumber(), Number(1.8));
  EXPECT_EQ(metadata.focalLength(), Number(26));
  EXPECT_EQ(metadata.userComment(), "hm");
  EXPECT_EQ(metadata.livePhotoIdentifier(), "LIVE");

  KvImageMetadata absent = metadata;
  absent.setProperties(std::nullopt);
  EXPECT_EQ(absent.fileSize(), std::nullopt);
  EXPECT_EQ(absent.cameraMake(), std::nullopt);
  EXPECT_EQ(absent.iso(), std::nullopt);
  EXPECT_EQ(absent.date(), std::nullopt);
  EXPECT_EQ(absent.location(), std::nullopt);
  EXPECT_EQ(absent.size(), Size());
  EXPECT_EQ(absent.exifOrientation(), 1u);
  EXPECT_EQ(KvImageMetadata(absent).properties(), std::nullopt);  // a copy does not make it empty
}

TEST(KvImageMetadataTest, TheDateIsTheFirstTextEvenIfItIsNone) {
  using namespace std::chrono_literals;
  const ScopedLocale locale(Locale("en_US_POSIX"));
  const Date noon = std::chrono::sys_days(2024y / 5 / 6) + 12h;
  const Value text("2024:05:06 12:00:00"), other("1999:01:01 00:00:00");
  struct Case {
    const char* what;
    Dictionary properties;
    std::optional<Date> date;
  };
  for (const Case& c :
       {Case{"digitised first",
             {{"{Exif}", Dictionary{{"DateTimeOriginal", other}, {"DateTimeDigitized", text}}}},
             noon},
        Case{"then original",
             {{"{Exif}", Dictionary{{"DateTimeDigitized", 3}, {"DateTimeOriginal", text}}}},
             noon},
        Case{"then TIFF",
             {{"{Exif}", Dictionary()}, {"{TIFF}", Dictionary{{"DateTime", text}}}},
             noon},
        Case{"TIFF without EXIF", {{"{TIFF}", Dictionary{{"DateTime", text}}}}, std::nullopt},
        Case{"no second try",
             {{"{Exif}", Dictionary{{"DateTimeDigitized", "2024:02:30 12:00:00"},
                                    {"DateTimeOriginal", text}}}},
             std::nullopt}}) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(KvImageMetadata::withProperties(c.properties).date(), c.date);
  }
}

// Written as the user's wall clock, read as UTC: meant.
TEST(KvImageMetadataTest, ADateComesBackShiftedByTheZone) {
  using namespace std::chrono_literals;
  const ScopedLocale locale(Locale("en_US_POSIX"));
  const ScopedTimeZone zone(TimeZone::withName("GMT+5:30").value());
  const Date date = std::chrono::sys_days(2024y / 5 / 17) + 9h + 30min;
  KvImageMetadata metadata;
  metadata.setDateOriginal(date);
  EXPECT_EQ(metadata.properties(),
            (Dictionary{{"{Exif}", Dictionary{{"DateTimeOriginal", "2024:05:17 15:00:00"}}},
                        {"{TIFF}", Dictionary{{"DateTime", "2024:05:17 15:00:00"}}}}));
  EXPECT_EQ(metadata.date(), date + 5h + 30min);
  metadata.setDateDigitized(date - 24h);
  EXPECT_EQ(metadata.date(), date - 24h + 5h + 30min);
}

TEST(KvImageMetadataTest, AMatteIsNoDepth) {
  KvImageMetadata metadata;
  metadata.setAuxiliaryDataInfoMatte(Dictionary());
  EXPECT_FALSE(metadata.hasDepthOrDisparityInformation());
  metadata.setAuxiliaryDataInfoDepth(Dictionary());
  EXPECT_TRUE(metadata.hasDepthOrDisparityInformation());
  metadata.setAuxiliaryDataInfoDepth(std::nullopt);
  metadata.setAuxiliaryDataInfoDisparity(Dictionary());
  EXPECT_TRUE(metadata.hasDepthOrDisparityInformation());
}

TEST(KvImageMetadataTest, LocationNeedsAllFourEntriesAndExactReferences) {
  const Dictionary all{
      {"Latitude", 48.5}, {"LatitudeRef", "S"}, {"Longitude", 16}, {"LongitudeRef", "W"}};
  const std::optional<CLLocation> location = metadataWith("{GPS}", all).location();
  ASSERT_TRUE(location);
  EXPECT_EQ(*location, (CLLocation{.latitude = -48.5, .longitude = -16}));

  for (const auto& [key, value] : all) {
    SCOPED_TRACE(*key.text());
    Dictionary missing = all;
    missing.remove(key);
    EXPECT_FALSE(metadataWith("{GPS}", missing).location());
    Dictionary ofAnotherType = all;
    ofAnotherType.set(key, value.as<Number>() ? Value("48.5") : Value(48.5));
    EXPECT_FALSE(metadataWith("{GPS}", ofAnotherType).location());
  }

  Dictionary lowerCase = all;
  lowerCase.set("LatitudeRef", "s");
  EXPECT_EQ(metadataWith("{GPS}", lowerCase).location()->latitude, 48.5);
}

TEST(KvImageMetadataTest, EditorsIgnoreAnAbsentArgument) {
  KvImageMetadata metadata;
  metadata.setProperties(std::nullopt);
  metadata.setOrientation(std::nullopt);
  metadata.setSoftware(std::nullopt);
  metadata.setUserComment(std::nullopt);
  metadata.setDateDigitized(std::nullopt);
  metadata.setDateOriginal(std::nullopt);
  metadata.setLocation(std::nullopt);
  metadata.setLivePhotoIdentifier(std::nullopt);
  metadata.removeLivePhotosMetadata();
  EXPECT_EQ(metadata.properties(), std::nullopt);
}

TEST(KvImageMetadataTest, EditorsMakeTheDictionariesTheyNeed) {
  KvImageMetadata metadata;
  metadata.setProperties(std::nullopt);
  metadata.setOrientation(6);
  EXPECT_EQ(metadata.properties(),
            (Dictionary{{"Orientation", 6}, {"{TIFF}", Dictionary{{"Orientation", 6}}}}));

  metadata = KvImageMetadata::withProperties(
      Dictionary{{"{TIFF}", "no dictionary"}, {"{Exif}", Dictionary{{"FNumber", 2}}}});
  metadata.setSoftware("");
  metadata.setUserComment("Grüße");
  metadata.setLivePhotoIdentifier("LIVE");
  EXPECT_EQ(metadata.properties(),
            (Dictionary{{"{TIFF}", Dictionary{{"Software", ""}}},
                        {"{Exif}", Dictionary{{"FNumber", 2}, {"UserComment", "Grüße"}}},
                        {"{MakerApple}", Dictionary{{"17", "LIVE"}}}}));
}

TEST(KvImageMetadataTest, AnUnknownImageOrientationIsUp) {
  KvImageMetadata metadata;
  for (const auto& [orientation, expected] :
       {std::pair{UIImageOrientation::right, 6}, {UIImageOrientation{99}, 1}}) {
    metadata.setImageOrientation(orientation);
    EXPECT_EQ(metadata.orientation(), Number(expected));
  }
}

TEST(KvImageMetadataTest, ALocationKeepsItsSignedAltitudeAndWhatWasThere) {
  KvImageMetadata metadata = metadataWith("{GPS}", {{"AltitudeRef", 1}, {"Speed", 3}});
  metadata.setLocation(
      CLLocation{.latitude = -0.0, .longitude = -16.5, .altitude = -12.5, .horizontalAccuracy = 5});
  const Dictionary& gps = *metadata.properties()->get<Dictionary>("{GPS}");
  const Value* time = gps.find("TimeStamp");
  ASSERT_TRUE(time);
  EXPECT_EQ(time->as<std::string>()->size(), std::string("yyyy:MM:dd HH:mm:ss").size());
  Dictionary expected{{"AltitudeRef", 1}, {"Speed", 3},          {"LatitudeRef", "N"},
                      {"Latitude", 0},    {"LongitudeRef", "W"}, {"Longitude", 16.5},
                      {"DOP", 5},         {"Altitude", -12.5}};
  expected.set("TimeStamp", *time);
  EXPECT_EQ(gps, expected);
}

TEST(KvImageMetadataTest, RemovingTheLivePhotoTakesBothKeys) {
  KvImageMetadata metadata =
      metadataWith("{MakerApple}", {{"17", "LIVE"}, {17, "LIVE"}, {"1", 14}, {17.5, "other"}});
  metadata.removeLivePhotosMetadata();
  EXPECT_EQ(metadata.properties(),
            (Dictionary{{"{MakerApple}", Dictionary{{"1", 14}, {17.5, "other"}}}}));
}

TEST(KvImageMetadataTest, CopiesShareNothing) {
  KvImageMetadata original = metadataWith("{TIFF}", {{"Software", "a"}});
  original.setVideoCodecName("hvc1");
  KvImageMetadata copy = original;
  copy.setSoftware("b");
  copy.setVideoCodecName(std::nullopt);
  EXPECT_EQ(original.software(), "a");
  EXPECT_EQ(original.videoCodecName(), "hvc1");
  EXPECT_EQ(copy.software(), "b");
}

}  // namespace
}  // namespace FrameworkUtility
