#include <framework_utility/imageio/image_metadata.h>
#include <tests/imageio/pictures.h>
#include <tests/support/run_program.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <tuple>

namespace FrameworkUtility {
namespace {

using testing::encoded;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::Not;
using testing::ProgramResult;
using testing::redAndBlue;

class KvtoolTest : public ::testing::Test {
 protected:
  std::string path(std::string_view name) const { return folder_.path(name); }

  /// `arguments` as a shell reads them.
  ProgramResult run(const std::string& arguments) const {
    return testing::runProgram("'" KVTOOL "' " + arguments, folder_.path());
  }

  const testing::TemporaryFolder folder_;
};

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

TEST_F(KvtoolTest, MetadataShowsTheFactsThatAreKnown) {
  const Data jpeg = encoded(redAndBlue(20, 10), "public.jpeg", everyFact);
  testing::writeFile(path("a b.jpg"), jpeg);
  const ProgramResult all = run("metadata --json 'a b.jpg'");
  EXPECT_EQ(all.exitCode, 0);
  EXPECT_EQ(all.problems, "");
  EXPECT_THAT(all.output, HasSubstr(R"({"file": "a b.jpg", "properties": {)"));
  EXPECT_THAT(
      all.output,
      EndsWith(R"("facts": {"width": 20, "height": 10, "orientation": 6, )"
               R"("date": "2024-05-06T07:08:09", "make": "Tervix", "model": "One \"Pro\"", )"
               R"("software": "Pelvar", "iso": 125, "fNumber": 1.8, "focalLength": 4.25, )"
               R"("latitude": -48.5, "longitude": -2.25, "fileSize": )" +
               std::to_string(jpeg.size()) + "}}\n"));
  EXPECT_EQ(std::count(all.output.begin(), all.output.end(), '\n'), 1);

  const Data png = encoded(redAndBlue(20, 10), "public.png");
  testing::writeFile(path("b.png"), png);
  EXPECT_THAT(run("metadata --json b.png").output,
              EndsWith(R"("facts": {"width": 20, "height": 10, "fileSize": )" +
                       std::to_string(png.size()) + "}}\n"));
}

TEST_F(KvtoolTest, MetadataAsATableIsAligned) {
  testing::writeFile(path("a.jpg"), encoded(redAndBlue(20, 10), "public.jpeg", everyFact));
  const ProgramResult result = run("metadata a.jpg");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.output, HasSubstr("\n  width        20\n  height       10\n"));
  EXPECT_THAT(result.output, HasSubstr("{TIFF} Software"));
}

TEST_F(KvtoolTest, ABadFileIsReportedAndTheOthersGoOn) {
  testing::writeFile(path("a.jpg"), encoded(redAndBlue(20, 10), "public.jpeg"));
  testing::writeFile(path("empty.jpg"), Data());
  const ProgramResult result = run("metadata --json none.jpg a.jpg empty.jpg a.jpg .");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 2);
  EXPECT_THAT(result.problems, HasSubstr("none.jpg: "));
  EXPECT_THAT(result.problems, HasSubstr("empty.jpg: "));
  EXPECT_EQ(std::count(result.problems.begin(), result.problems.end(), '\n'), 3);
}

TEST_F(KvtoolTest, SaveWritesTheChangesIntoTheSession) {
  testing::writeFile(path("a.v1.jpg"), testing::jpegWithPrivateTag("Camera", "a private note"));
  const ProgramResult result =
      run("save a.v1.jpg --orientation 8 --date 2020-02-29T23:59:58Z --software 'Pelvar 7.1' "
          "--location -33.86,151.21 --remove-live-photo --quality 0.5 --session Editor-1");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.problems, "");
  EXPECT_THAT(result.output, MatchesRegex("/.*/Editor-1/[0-9A-F-]{36}/a\\.jpeg\n"));
  const std::string written = result.output.substr(0, result.output.size() - 1);
  EXPECT_TRUE(testing::contains(testing::readFile(written), "a private note"));
  const std::string facts = run("metadata --json '" + written + "'").output;
  for (const char* fact :
       {R"("orientation": 8)", R"("date": "2020-02-29T23:59:58+00:00")",
        R"("software": "Pelvar 7.1")", R"("latitude": -33.86)", R"("longitude": 151.21)"}) {
    EXPECT_THAT(facts, HasSubstr(fact));
  }
}

TEST_F(KvtoolTest, DatesAreTheCamerasClockInEveryLocale) {
  const Dictionary exif{{"DateTimeDigitized", "2024:05:06 07:08:09"},
                        {"OffsetTimeDigitized", "-03:30"},
                        {"OffsetTimeOriginal", "+02:00"},
                        {"SubsecTimeOriginal", "123"}};
  testing::writeFile(path("a.jpg"),
                     encoded(redAndBlue(9, 9), "public.jpeg", Dictionary{{"{Exif}", exif}}));
  const std::pair<std::string, std::string> dates[] = {
      {"", "2024-05-06T07:08:09-03:30"},
      {"2020-02-29T23:59:58", "2020-02-29T23:59:58"},
      {"2020-02-29T23:59:58+05:45", "2020-02-29T23:59:58+05:45"},
      {"2020-02-29T23:59:58Z", "2020-02-29T23:59:58+00:00"}};
  for (const char* user : {"LC_ALL=C TZ=UTC", "LC_ALL=th_TH.UTF-8 TZ=Asia/Bangkok",
                           "LC_ALL=fa_IR.UTF-8 TZ=America/St_Johns"}) {
    for (const auto& [given, read] : dates) {
      SCOPED_TRACE(user + given);
      const std::string tool = std::string(user) + " '" KVTOOL "' ";
      const std::string option = given.empty() ? "" : " --date " + given;
      const std::string json = testing::runProgram(tool + "save a.jpg -o b.jpg" + option + " && " +
                                                       tool + "metadata --json b.jpg",
                                                   folder_.path())
                                   .output;
      EXPECT_THAT(json, HasSubstr("\"date\": \"" + read + "\""));
      if (given.empty()) continue;
      for (const char* key : {"DateTime", "DateTimeOriginal", "DateTimeDigitized"}) {
        EXPECT_THAT(json, HasSubstr(std::string("\"") + key + "\": \"2020:02:29 23:59:58\""));
      }
      const std::string offset = read.substr(19);
      for (const char* key : {"OffsetTime", "OffsetTimeOriginal", "OffsetTimeDigitized"}) {
        const std::string entry = std::string("\"") + key + "\": ";
        if (offset.empty()) {
          EXPECT_THAT(json, Not(HasSubstr(entry)));
        } else {
          EXPECT_THAT(json, HasSubstr(entry + "\"" + offset + "\""));
        }
      }
      EXPECT_THAT(json, Not(HasSubstr("Subsec")));
    }
  }
}

TEST_F(KvtoolTest, APlaceChangesOnlyWhatItSays) {
  const Dictionary gps{{"Latitude", 48.5},    {"LatitudeRef", "S"},     {"Longitude", 2.25},
                       {"LongitudeRef", "W"}, {"Altitude", 35.5},       {"AltitudeRef", 1},
                       {"DOP", 2.5},          {"TimeStamp", "12:13:14"}};
  testing::writeFile(path("a.jpg"),
                     encoded(redAndBlue(9, 9), "public.jpeg", Dictionary{{"{GPS}", gps}}));
  for (const auto& [place, altitude, reference] :
       {std::tuple{"1.5,-2.75", 35.5, 1}, {"1.5,-2.75,171", 171.0, 0}, {"1.5,-2.75,-3", 3.0, 1}}) {
    SCOPED_TRACE(place);
    ASSERT_EQ(run(std::string("save a.jpg -o b.jpg --location ") + place).exitCode, 0);
    const auto metadata = KvImageMetadata::withUrl(URL::fileURLWithPath(path("b.jpg")));
    ASSERT_TRUE(metadata);
    Dictionary expected = gps;
    expected.set("Latitude", 1.5);
    expected.set("LatitudeRef", "N");
    expected.set("Longitude", 2.75);
    expected.set("Altitude", altitude);
    expected.set("AltitudeRef", reference);
    const auto* found = metadata->properties()->get<Dictionary>("{GPS}");
    for (const auto& [key, value] : expected) {
      ASSERT_TRUE(found && found->find(key)) << *key.text();
      EXPECT_EQ(*found->find(key), value) << *key.text();
    }
  }
  testing::writeFile(path("a.jpg"), encoded(redAndBlue(9, 9), "public.jpeg"));
  const std::string bare = run("save a.jpg -o b.jpg -l 1,2; '" KVTOOL "' metadata b.jpg").output;
  EXPECT_THAT(bare, HasSubstr("{GPS} LongitudeRef"));
  EXPECT_THAT(bare, Not(HasSubstr("{GPS} Altitude")));
  EXPECT_THAT(bare, Not(HasSubstr("{GPS} TimeStamp")));
}

TEST_F(KvtoolTest, SaveChoosesTheType) {
  testing::writeFile(path("a.png"), encoded(redAndBlue(20, 10), "public.png"));
  const std::pair<std::string, std::string> types[] = {
      {"", "png"}, {"--type jpg", "jpeg"}, {"--type public.jpeg", "jpeg"}};
  for (const auto& [options, extension] : types) {
    SCOPED_TRACE(options);
    EXPECT_THAT(run("save a.png " + options).output, EndsWith("/a." + extension + "\n"));
  }
}

TEST_F(KvtoolTest, ThumbnailBearsExactlyTheNameGiven) {
  testing::writeFile(path("a.jpg"), encoded(redAndBlue(200, 100), "public.jpeg", everyFact));
  for (const auto& [name, type] : {std::pair{"small", "public.jpeg"},
                                   {"small.jpg", "public.jpeg"},
                                   {"small.PNG", "public.png"}}) {
    SCOPED_TRACE(name);
    const ProgramResult result = run(std::string("thumbnail a.jpg --size 50 --out ") + name);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output + result.problems, "");
    const auto source = CGImageSource::createWithURL(URL::fileURLWithPath(path(name)));
    ASSERT_TRUE(source);
    EXPECT_EQ(source->type(), type);
    EXPECT_EQ(KvImageMetadata::withImageSource(source)->size(), (Size{25, 50}));
  }
  for (const char* options :
       {"none.jpg --size 50 --out x.jpg", "a.jpg --size 50 --out no/folder/x.jpg"}) {
    EXPECT_EQ(run(std::string("thumbnail ") + options).exitCode, 1) << options;
  }
  EXPECT_FALSE(std::filesystem::exists(path("x.jpg")));
}

}  // namespace
}  // namespace FrameworkUtility
