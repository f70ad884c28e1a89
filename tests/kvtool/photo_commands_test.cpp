#include <framework_utility/imageio/image_metadata.h>
#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/foundation/values/byte_writer.h>
#include <tests/kvtool/kvtool_test.h>

#include <algorithm>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <tuple>

namespace FrameworkUtility {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::Not;
using testing::redAndBlue;

class PhotoCommandsTest : public testing::KvtoolTest {};

const Dictionary everyFact{
    {"Orientation", 6},
    {"{TIFF}", Dictionary{{"Make", "Tervix"}, {"Model", "One \"Pro\""}, {"Software", "Pelvar"}}},
    {"{Exif}", Dictionary{{"DateTimeDigitized", "2024:05:06 07:08:09"},
                          {"ISOSpeedRatings", Value(Array{125})},
                          {"FNumber", 1.8},
                          {"FocalLength", 4.25}}},
    {"{GPS}",
     Dictionary{
         {"Latitude", 48.5}, {"LatitudeRef", "S"}, {"Longitude", 2.25}, {"LongitudeRef", "W"}}}};

TEST_F(PhotoCommandsTest, MetadataShowsTheFactsThatAreKnown) {
  write("a b.jpg", redAndBlue(20, 10), "jpeg", everyFact);
  const auto sizeOf = [&](const char* name) {
    return std::to_string(std::filesystem::file_size(path(name)));
  };
  const std::string all = output("metadata --json 'a b.jpg'");
  EXPECT_THAT(all, HasSubstr(R"({"file": "a b.jpg", "properties": {)"));
  EXPECT_THAT(
      all, EndsWith(R"("facts": {"width": 20, "height": 10, "orientation": 6, )"
                    R"("date": "2024-05-06T07:08:09", "make": "Tervix", "model": "One \"Pro\"", )"
                    R"("software": "Pelvar", "iso": 125, "fNumber": 1.8, "focalLength": 4.25, )"
                    R"("latitude": -48.5, "longitude": -2.25, "fileSize": )" +
                    sizeOf("a b.jpg") + "}}\n"));
  EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 1);
  const std::string table = output("metadata 'a b.jpg'");
  EXPECT_THAT(table, HasSubstr("\n  width        20\n  height       10\n"));
  EXPECT_THAT(table, HasSubstr("{TIFF} Software"));

  write("b.png", redAndBlue(20, 10), "png");
  EXPECT_THAT(
      output("metadata --json b.png"),
      EndsWith(R"("facts": {"width": 20, "height": 10, "fileSize": )" + sizeOf("b.png") + "}}\n"));
}

TEST_F(PhotoCommandsTest, SaveWritesTheChangesIntoTheSession) {
  const Data plain = testing::encoded(redAndBlue(16, 16), "public.jpeg");
  constexpr std::string_view note = "a private note";
  detail::ByteWriter file;  // with a comment
  file.put(std::span(plain).first(2)).putNumber(0xFFFE, 2).putNumber(2 + note.size(), 2);
  file.put(note).put(std::span(plain).subspan(2));
  testing::writeFile(path("a.v1.jpg"), Data(file.takeBytes()));
  const std::string saved = output(
      "save a.v1.jpg --orientation 8 --date 2020-02-29T23:59:58Z --software 'Pelvar 7.1' "
      "--location -33.86,151.21 --remove-live-photo --quality 0.5 --session Editor-1");
  EXPECT_THAT(saved, MatchesRegex("/.*/Editor-1/[0-9A-F-]{36}/a\\.jpeg\n"));
  const std::string written = saved.substr(0, saved.size() - 1);
  EXPECT_THAT(std::string(detail::asText(testing::readFile(written))), HasSubstr(note));
  const std::string facts = output("metadata --json '" + written + "'");
  for (const char* fact :
       {R"("orientation": 8)", R"("date": "2020-02-29T23:59:58+00:00")",
        R"("software": "Pelvar 7.1")", R"("latitude": -33.86)", R"("longitude": 151.21)"}) {
    EXPECT_THAT(facts, HasSubstr(fact));
  }
}

TEST_F(PhotoCommandsTest, DatesAreTheCamerasClockInEveryLocale) {
  const Dictionary exif{{"DateTimeDigitized", "2024:05:06 07:08:09"},
                        {"OffsetTimeDigitized", "-03:30"},
                        {"OffsetTimeOriginal", "+02:00"},
                        {"SubsecTimeOriginal", "123"}};
  write("a.jpg", redAndBlue(9, 9), "jpeg", {{"{Exif}", exif}});
  for (const std::string user : {"LC_ALL=C TZ=UTC ", "LC_ALL=fa_IR.UTF-8 TZ=America/St_Johns "}) {
    // Saves with these options and shows what was written.
    const auto shown = [&](const std::string& options) {
      SCOPED_TRACE(user + options);
      return runLine(user + tool + "save a.jpg -o b.jpg" + options + " && " + user + tool +
                     "metadata --json b.jpg")
          .output;
    };
    EXPECT_THAT(shown(""), HasSubstr(R"("date": "2024-05-06T07:08:09-03:30")"));
    for (const auto& [zone, offset] : {std::pair{"", ""}, {"+05:45", "+05:45"}, {"Z", "+00:00"}}) {
      const std::string json = shown(std::string(" --date 2020-02-29T23:59:58") + zone);
      EXPECT_THAT(json, HasSubstr("\"date\": \"2020-02-29T23:59:58" + std::string(offset) + '"'));
      for (const std::string place : {"", "Original", "Digitized"}) {
        EXPECT_THAT(json, HasSubstr("\"DateTime" + place + "\": \"2020:02:29 23:59:58\""));
        const auto hasOffset = HasSubstr("\"OffsetTime" + place + "\": \"" + offset);
        EXPECT_EQ(::testing::Value(json, hasOffset), *offset != '\0') << json;
      }
      EXPECT_THAT(json, Not(HasSubstr("Subsec")));
    }
  }
}

TEST_F(PhotoCommandsTest, APlaceChangesOnlyWhatItSays) {
  const Dictionary gps{{"Latitude", 48.5},    {"LatitudeRef", "S"},     {"Longitude", 2.25},
                       {"LongitudeRef", "W"}, {"Altitude", 35.5},       {"AltitudeRef", 1},
                       {"DOP", 2.5},          {"TimeStamp", "12:13:14"}};
  write("a.jpg", redAndBlue(9, 9), "jpeg", {{"{GPS}", gps}});
  for (const auto& [place, altitude, reference] :
       {std::tuple{"1.5,-2.75", 35.5, 1}, {"1.5,-2.75,171", 171.0, 0}, {"1.5,-2.75,-3", 3.0, 1}}) {
    SCOPED_TRACE(place);
    output(std::string("save a.jpg -o b.jpg --location ") + place);
    const auto metadata = KvImageMetadata::withUrl(URL::fileURLWithPath(path("b.jpg")));
    const auto* found = metadata ? metadata->properties()->get<Dictionary>("{GPS}") : nullptr;
    ASSERT_TRUE(found);
    Dictionary expected = gps;
    for (const auto& [key, value] : Dictionary{{"Latitude", 1.5},
                                               {"LatitudeRef", "N"},
                                               {"Longitude", 2.75},
                                               {"Altitude", altitude},
                                               {"AltitudeRef", reference}}) {
      expected.set(key, value);
    }
    for (const auto& [key, value] : expected) {
      ASSERT_TRUE(found->find(key)) << *key.text();
      EXPECT_EQ(*found->find(key), value) << *key.text();
    }
  }
  write("a.jpg", redAndBlue(9, 9), "jpeg");
  output("save a.jpg -o b.jpg -l 1,2");
  const std::string bare = output("metadata b.jpg");
  EXPECT_THAT(bare, HasSubstr("{GPS} LongitudeRef"));
  EXPECT_THAT(bare, Not(HasSubstr("{GPS} Altitude")));
}

TEST_F(PhotoCommandsTest, ThumbnailBearsExactlyTheNameGiven) {
  write("a.jpg", redAndBlue(200, 100), "jpeg", everyFact);
  for (const auto& [name, type] : {std::pair{"small", "public.jpeg"},
                                   {"small.jpg", "public.jpeg"},
                                   {"small.PNG", "public.png"}}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(output(std::string("thumbnail a.jpg --size 50 --out ") + name), "");
    const auto source = CGImageSource::createWithURL(URL::fileURLWithPath(path(name)));
    ASSERT_TRUE(source);
    EXPECT_EQ(source->type(), type);
    EXPECT_EQ(KvImageMetadata::withImageSource(source)->size(), (Size{25, 50}));
  }
}

}  // namespace
}  // namespace FrameworkUtility
