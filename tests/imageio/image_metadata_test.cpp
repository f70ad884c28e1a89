#include <framework_utility/imageio/image_metadata.h>

#include <framework_utility/imageio/image_orientation.h>
#include <framework_utility/platform/foundation/archives/keyed_archiver.h>
#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>
#include <framework_utility/platform/foundation/archives/uuid.h>
#include <framework_utility/platform/foundation/property_lists/property_list.h>
#include <framework_utility/platform/locale/locale.h>
#include <framework_utility/platform/locale/time_zone.h>
#include <tests/support/archives.h>
#include <tests/support/is_error.h>

#include <gmock/gmock.h>

#include <chrono>
#include <type_traits>

namespace FrameworkUtility {
namespace {

using namespace std::chrono_literals;
using namespace testing;
using ::testing::ElementsAre;

// Of a temporary, nothing refers to it.
static_assert(!std::is_reference_v<decltype(KvImageMetadata().properties())>);

KvImageMetadata with(Dictionary properties) {
  return KvImageMetadata::withProperties(std::move(properties));
}

KvImageMetadata with(std::string_view dictionary, Dictionary entries) {
  return with(Dictionary{{dictionary, std::move(entries)}});
}

TEST(KvImageMetadataTest, WithoutPropertiesTheyAreEmptyAndAMatteIsNoDepth) {
  KvImageMetadata metadata;
  metadata.setAuxiliaryDataInfoMatte(Dictionary());
  EXPECT_FALSE(metadata.hasDepthOrDisparityInformation());
  const std::optional<Dictionary> none, some{Dictionary{{"a", 1}}};
  const auto depth = KvImageMetadata::withProperties(none, some, none);
  EXPECT_EQ(depth.properties(), Dictionary());
  EXPECT_EQ(depth.auxiliaryDataInfoDepth(), some);
  EXPECT_TRUE(depth.hasDepthOrDisparityInformation());
  const auto disparity = KvImageMetadata::withProperties(none, none, some);
  EXPECT_EQ(disparity.auxiliaryDataInfoDisparity(), some);
  EXPECT_TRUE(disparity.hasDepthOrDisparityInformation());
}

TEST(KvImageMetadataTest, SizesTruncateAndFiveToEightExchangeTheSides) {
  const KvImageMetadata odd = with({{"PixelWidth", 40.9}, {"PixelHeight", "30"}});
  EXPECT_EQ(odd.width(), Number(40.9));
  EXPECT_EQ(odd.height(), std::nullopt);
  EXPECT_EQ(odd.size(), (Size{40, 0}));
  KvImageMetadata metadata = with({{"PixelWidth", 4000}, {"PixelHeight", 3000}});
  for (int orientation = 0; orientation <= 9; ++orientation) {
    metadata.setOrientation(orientation);
    const bool exchanged = orientation >= 5 && orientation <= 8;
    EXPECT_EQ(metadata.sizeOriented(), (exchanged ? Size{3000, 4000} : Size{4000, 3000}))
        << orientation;
  }
}

TEST(KvImageMetadataTest, OrientationFallsBackToTheTiffDictionary) {
  const Value tiff(Dictionary{{"Orientation", 3}});
  const auto expectOrientation = [](const Dictionary& properties, std::optional<Number> orientation,
                                    std::uint32_t exif) {
    EXPECT_EQ(with(properties).orientation(), orientation) << Value(properties).description();
    EXPECT_EQ(with(properties).exifOrientation(), exif);
  };
  expectOrientation({}, std::nullopt, 1);
  expectOrientation({{"Orientation", 6}, {"{TIFF}", tiff}}, 6, 6);
  expectOrientation({{"{TIFF}", tiff}}, 3, 3);
  expectOrientation({{"Orientation", "6"}, {"{TIFF}", tiff}}, 3, 3);  // a text does not count
  expectOrientation({{"{TIFF}", 3}}, std::nullopt, 1);
  expectOrientation({{"Orientation", -1}}, -1, 0xFFFFFFFF);  // not checked
}

TEST(KvImageMetadataTest, IsoIsTheSpeedElseTheFirstRating) {
  const auto isoOf = [](const Dictionary& exif) { return with("{Exif}", exif).iso(); };
  const Value ratings(Array{100, 200});
  EXPECT_EQ(isoOf({{"ISOSpeed", 64}, {"ISOSpeedRatings", ratings}}), Number(64));
  EXPECT_EQ(isoOf({{"ISOSpeed", "64"}, {"ISOSpeedRatings", ratings}}), Number(100));
  for (const Value& none : {Value(100), Value(Array{}), Value(Array{"100", 200})}) {
    EXPECT_EQ(isoOf({{"ISOSpeedRatings", none}}), std::nullopt);
  }
}

TEST(KvImageMetadataTest, ReadsTheWellKnownEntries) {
  const KvImageMetadata metadata =
      with({{"FileSize", 12345},
            {"{TIFF}", Dictionary{{"Make", "Tervix"}, {"Model", "One"}}},
            {"{Exif}", Dictionary{{"FNumber", 1.8}, {"FocalLength", 26}}},
            {"{MakerApple}", Dictionary{{17, "not this"}, {"17", "LIVE"}}}});
  EXPECT_EQ(metadata.fileSize(), Number(12345));
  EXPECT_EQ(metadata.cameraMake(), "Tervix");
  EXPECT_EQ(metadata.cameraModel(), "One");
  EXPECT_EQ(metadata.fNumber(), Number(1.8));
  EXPECT_EQ(metadata.focalLength(), Number(26));
  EXPECT_EQ(metadata.livePhotoIdentifier(), "LIVE");

  KvImageMetadata absent = metadata;  // which shares nothing
  absent.setProperties(std::nullopt);
  EXPECT_EQ(metadata.cameraModel(), "One");
  EXPECT_EQ(absent.date(), std::nullopt);
  EXPECT_EQ(absent.size(), Size());
  EXPECT_EQ(absent.exifOrientation(), 1u);
  EXPECT_EQ(KvImageMetadata(absent).properties(), std::nullopt);  // a copy does not make it empty
}

TEST(KvImageMetadataTest, TheDateIsTheFirstTextEvenIfItIsNone) {
  const ScopedLocale locale(Locale("en_US_POSIX"));
  const Value noon("2024:05:06 12:00:00"), other("1999:01:01 00:00:00"),
      none("2024:02:30 12:00:00");
  const Dictionary tiff{{"DateTime", noon}};
  const auto dateOf = [&](const Dictionary& exif) {
    return with({{"{Exif}", exif}, {"{TIFF}", tiff}}).date();
  };
  const Date expected = std::chrono::sys_days(2024y / 5 / 6) + 12h;
  EXPECT_EQ(dateOf({{"DateTimeOriginal", other}, {"DateTimeDigitized", noon}}), expected);
  EXPECT_EQ(dateOf({{"DateTimeDigitized", 3}, {"DateTimeOriginal", noon}}), expected);
  EXPECT_EQ(dateOf({}), expected);
  EXPECT_EQ(dateOf({{"DateTimeDigitized", none}, {"DateTimeOriginal", noon}}), std::nullopt);
  EXPECT_EQ(with("{TIFF}", tiff).date(), std::nullopt);  // without EXIF
}

// Written as the user's wall clock, read as UTC: meant.
TEST(KvImageMetadataTest, ADateComesBackShiftedByTheZone) {
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

TEST(KvImageMetadataTest, LocationNeedsAllFourEntriesAndExactReferences) {
  const Dictionary all{
      {"Latitude", 48.5}, {"LatitudeRef", "S"}, {"Longitude", 16}, {"LongitudeRef", "W"}};
  EXPECT_EQ(with("{GPS}", all).location(), (CLLocation{.latitude = -48.5, .longitude = -16}));
  for (const auto& [key, value] : all) {
    SCOPED_TRACE(*key.text());
    Dictionary missing = all, ofAnotherType = all;
    missing.remove(key);
    EXPECT_FALSE(with("{GPS}", missing).location());
    ofAnotherType.set(key, value.as<Number>() ? Value("48.5") : Value(48.5));
    EXPECT_FALSE(with("{GPS}", ofAnotherType).location());
  }
  Dictionary lowerCase = all;
  lowerCase.set("LatitudeRef", "s");
  EXPECT_EQ(with("{GPS}", lowerCase).location()->latitude, 48.5);
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
  metadata.setImageOrientation(UIImageOrientation{99});  // an unknown one is up
  EXPECT_EQ(metadata.orientation(), Number(1));

  metadata = with({{"{TIFF}", "no dictionary"}, {"{Exif}", Dictionary{{"FNumber", 2}}}});
  metadata.setSoftware("");
  metadata.setUserComment("Grüße");
  metadata.setLivePhotoIdentifier("LIVE");
  EXPECT_EQ(metadata.properties(),
            (Dictionary{{"{TIFF}", Dictionary{{"Software", ""}}},
                        {"{Exif}", Dictionary{{"FNumber", 2}, {"UserComment", "Grüße"}}},
                        {"{MakerApple}", Dictionary{{"17", "LIVE"}}}}));

  metadata = with("{MakerApple}", {{"17", "LIVE"}, {17, "LIVE"}, {"1", 14}, {17.5, "other"}});
  metadata.removeLivePhotosMetadata();
  EXPECT_EQ(metadata.properties(),
            (Dictionary{{"{MakerApple}", Dictionary{{"1", 14}, {17.5, "other"}}}}));
}

TEST(KvImageMetadataTest, ALocationKeepsItsSignedAltitudeAndWhatWasThere) {
  KvImageMetadata metadata = with("{GPS}", {{"AltitudeRef", 1}, {"Speed", 3}});
  metadata.setLocation(
      CLLocation{.latitude = -0.0, .longitude = -16.5, .altitude = -12.5, .horizontalAccuracy = 5});
  Dictionary gps = *metadata.properties()->get<Dictionary>("{GPS}");
  ASSERT_TRUE(gps.get<std::string>("TimeStamp"));
  EXPECT_EQ(gps.get<std::string>("TimeStamp")->size(), std::string("yyyy:MM:dd HH:mm:ss").size());
  gps.remove("TimeStamp");
  const Dictionary expected{{"AltitudeRef", 1}, {"Speed", 3},          {"LatitudeRef", "N"},
                            {"Latitude", 0},    {"LongitudeRef", "W"}, {"Longitude", 16.5},
                            {"DOP", 5},         {"Altitude", -12.5}};
  EXPECT_EQ(gps, expected);
}

TEST(ImageOrientationTest, EveryOrientationHasItsExifNumber) {
  constexpr std::uint32_t expected[] = {1, 3, 8, 6, 2, 4, 5, 7};
  for (std::int64_t raw = 0; raw < 8; ++raw) {
    EXPECT_EQ(exifOrientationWithImageOrientation(UIImageOrientation{raw}), expected[raw]) << raw;
  }
  for (const int raw : {-1, 8}) {
    EXPECT_EQ(exifOrientationWithImageOrientation(UIImageOrientation{raw}), 0u) << raw;
  }
}

TEST(ImageOrientationTest, FourExchangesTheSidesAndSevenDoesNot) {
  for (std::int64_t orientation = -2; orientation <= 10; ++orientation) {
    const bool exchanged =
        orientation == 4 || orientation == 5 || orientation == 6 || orientation == 8;
    EXPECT_EQ(adjustSizeToExif({40, 30}, orientation), (exchanged ? Size{30, 40} : Size{40, 30}))
        << orientation;
  }
}

std::optional<Data> archived(const KvImageMetadata& metadata, Error* error = nullptr) {
  return NSKeyedArchiver::archivedDataWithRootObject(boxed(metadata), SecureCoding::required,
                                                     error);
}

std::optional<KvImageMetadata> unarchived(const Data& data, Error* error = nullptr) {
  const auto root = NSKeyedUnarchiver::unarchivedObjectOfClasses(
      KvImageMetadata::unarchivedObjectOfClasses(), data, error);
  const auto* metadata = root ? unboxed<KvImageMetadata>(*root) : nullptr;
  return metadata ? std::optional(*metadata) : std::nullopt;
}

/// The keys of the archive's first object.
std::vector<std::string> keysIn(const Data& archive) {
  const Value list = *propertyListWithData(archive);
  std::vector<std::string> keys;
  for (const auto& entry : *(*list.as<Dictionary>()->get<Array>("$objects"))[1].as<Dictionary>()) {
    keys.emplace_back(*entry.key.text());
  }
  return keys;
}

void expectSame(const KvImageMetadata& a, const KvImageMetadata& b) {
  EXPECT_EQ(a.properties(), b.properties());
  EXPECT_EQ(a.auxiliaryDataInfoDepth(), b.auxiliaryDataInfoDepth());
  EXPECT_EQ(a.auxiliaryDataInfoDisparity(), b.auxiliaryDataInfoDisparity());
  EXPECT_EQ(a.auxiliaryDataInfoMatte(), b.auxiliaryDataInfoMatte());
  EXPECT_EQ(a.videoCodecName(), b.videoCodecName());
}

TEST(KvImageMetadataCodingTest, WhatIsThereComesBackWithItsKinds) {
  const Dictionary exif{{"FNumber", 1.8}, {"ISOSpeedRatings", Value(Array{100})}};
  const Array own{Value(), Date(), URL::fileURLWithPath("/a"),
                  0.1F,    true,   Dictionary{{17, "text"}}};
  KvImageMetadata metadata =
      KvImageMetadata::withProperties(Dictionary{{"{Exif}", exif}, {"own", Value(own)}});
  metadata.setAuxiliaryDataInfoDepth(Dictionary{{"data", Data(std::vector<std::byte>(9))}});
  metadata.setAuxiliaryDataInfoDisparity(Dictionary{{"kind", "disparity"}});
  metadata.setAuxiliaryDataInfoMatte(Dictionary());
  metadata.setVideoCodecName("hvc1");
  const Data data = archived(metadata).value();
  EXPECT_THAT(keysIn(data),
              ElementsAre("properties", "auxiliaryDataInfoDepth", "auxiliaryDataInfoMatte",
                          "auxiliaryDataInfoDisparity", "videoCodecName", "$class"));
  const auto again = unarchived(data);
  ASSERT_TRUE(again);
  expectSame(*again, metadata);
  const Array& kinds = *again->properties()->get<Array>("own");
  EXPECT_TRUE(kinds[3].as<Number>()->isSinglePrecision());
  EXPECT_EQ(kinds[4].as<Number>()->kind(), Number::Kind::boolean);
}

TEST(KvImageMetadataCodingTest, AbsentFieldsAreNotWrittenAndStayAbsent) {
  KvImageMetadata metadata;
  EXPECT_THAT(keysIn(*archived(metadata)), ElementsAre("properties", "$class"));
  expectSame(unarchived(*archived(metadata)).value(), metadata);
  metadata.setProperties(std::nullopt);
  EXPECT_THAT(keysIn(*archived(metadata)), ElementsAre("$class"));
  expectSame(unarchived(*archived(metadata)).value(), metadata);
}

TEST(KvImageMetadataCodingTest, WhatIsOfAnotherKindIsAbsent) {
  // As objects: null, this, its class, a text, a number, bytes, a dictionary and its class.
  constexpr unsigned text = 3, dictionary = 6;
  for (unsigned other = 0; other <= dictionary; ++other) {
    if (other == 1 || other == 2) continue;
    const auto metadata =
        unarchived(archiveOf({Dictionary{{"properties", reference(other)},
                                         {"auxiliaryDataInfoMatte", reference(other)},
                                         {"videoCodecName", reference(other)},
                                         {"$class", reference(2)}},
                              classRecord("KvImageMetadata"), "text", 5, Data(),
                              Dictionary{{"NS.keys", references({3})},
                                         {"NS.objects", references({4})},
                                         {"$class", reference(7)}},
                              classRecord("NSDictionary")}));
    ASSERT_TRUE(metadata) << other;
    EXPECT_EQ(metadata->properties().has_value(), other == dictionary);
    EXPECT_EQ(metadata->auxiliaryDataInfoMatte().has_value(), other == dictionary);
    EXPECT_EQ(metadata->videoCodecName().has_value(), other == text);
  }
}

TEST(KvImageMetadataCodingTest, OtherClassesAreRefused) {
  const KvImageMetadata metadata = KvImageMetadata::withProperties(
      Dictionary{{"other", Value(std::make_shared<NSUUID>(NSUUID::Bytes{}))}});
  Error error;
  EXPECT_FALSE(unarchived(*archived(metadata), &error));
  EXPECT_THAT(error, IsError(CoderError::readCorrupt));

  KvImageMetadata::setSupportsSecureCoding(false);
  EXPECT_FALSE(archived(KvImageMetadata(), &error));
  EXPECT_THAT(error, IsError(CoderError::invalidValue));
  KvImageMetadata::setSupportsSecureCoding(true);
  EXPECT_TRUE(archived(KvImageMetadata()));
}

}  // namespace
}  // namespace FrameworkUtility
