#include <tests/imageio/pictures.h>
#include <tests/support/run_program.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

namespace FrameworkUtility {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using testing::ProgramResult;
using ::testing::StartsWith;

TEST(CommandLineTest, WhatCannotBeUnderstoodGivesTwoAndOneLine) {
  const testing::TemporaryFolder folder;
  testing::writeFile(folder.path("a.png"),
                     testing::encoded(testing::redAndBlue(4, 4), "public.png"));
  const std::pair<std::string, std::string> cases[] = {
      {"", "no command is given (see kvtool --help)"},
      {"metdata a.png", "there is no command metdata; did you mean metadata? (see kvtool --help)"},
      {"unknown", "there is no command unknown (see kvtool --help)"},
      {"--verson", "there is no option --verson; did you mean --version? (see kvtool --help)"},
      {"metadata", "FILE is missing (see kvtool metadata --help)"},
      {"metadata --jsn a.png",
       "there is no option --jsn; did you mean --json? (see kvtool metadata --help)"},
      {"metadata --json=maybe a.png", "--json takes no value"},
      {"save a.png --quality 2", R"(--quality is 0 to 1, not "2")"},
      {"save a.png --orientation 9", R"(--orientation is 1 to 8, not "9")"},
      {"save a.png --orientation", "--orientation needs a value"},
      {"save a.png --type webp", "WEBP is not written here, only JPEG and PNG"},
      {"save a.png --type nothing.known", "there is no type nothing.known"},
      {"save a.png --session ../out", R"(--session is a name, not "../out")"},
      {"save a.png --date yesterday", R"(--date is like 2024-05-06T07:08:09 or)"},
      {"save a.png --date 2023-02-29T00:00:00", "--date is like"},
      {"save a.png --date 2023-02-28T00:00:00+0200", "--date is like"},
      {"save a.png --date 2023-02-28T00:00:00+15:00", "--date is like"},
      {"save a.png --location 91,0", "--location is like 48.2082,16.3738"},
      {"save a.png --location 1,2,3,4", "--location is like"},
      {"save a.png --location 1", "--location is like"},
      {"save a.png --out x.png --type jpeg", "x.png is not a name for JPEG"},
      {"save a.png a.png --out x.png", "--out takes one picture; give --out-dir for several"},
      {"save a.png --out x.png --out-dir x", "--out and --out-dir exclude each other"},
      {"thumbnail a.png --size 0 --out x", R"(--size is 1 to 65535, not "0")"},
      {"thumbnail a.png -s 9 -s 8 --out x", "--size is given twice"},
      {"thumbnail a.png --size 9", "--out or --out-dir is missing"},
      {"thumbnail a.png --size 9 --out x.webp", "WEBP is not written here"},
      {"thumbnail a.png -s 9 -o x --max-pixels 0",
       "--max-pixels is a number above 0, alone or with M behind it"},
      {"save a.png --max-memory 1MB",
       "--max-memory is a number above 0, alone or with KiB, MiB or GiB behind it"},
      {"thumbnail a.png --size 9 --out ''", R"(--out is a name, not "")"},
      {"palette", "PHOTO is missing"},
      {"palette a.png --count -1", R"(--count is 0 to 1000000, not "-1")"},
      {"palette a.png --count many", "--count is 0 to"},
      {"palette a.png --quality best", R"(--quality is low, medium, high or full, not "best")"},
      {"palette a.png --png x.jpg", "x.jpg is not a name for PNG"},
      {"palette a.png --json --png -", "--json and --png - both go to standard output"},
      {"cover --area 3,0 --content 4,3 --center 0,0 --angle 1",
       R"(--area is like 300,200, both above 0, not "3,0")"},
      {"cover --area 3,2 --content 4,-3 --center 0,0 --angle 1", "--content is like 300,200"},
      {"cover --area inf,2 --content 4,3 --center 0,0 --angle 1", "--area is like"},
      {"cover --area 3 --content 4,3 --center 0,0 --angle 1", "--area is like"},
      {"cover --area 3,2,1 --content 4,3 --center 0,0 --angle 1", "--area is like"},
      {"cover --area 3,2 --content 4,3 --center x,y --angle 1", R"(--center is like 300,200, not)"},
      {"cover --area 3,2 --content 4,3 --center 0,0 --angle nan", R"(--angle is a number, not)"},
      {"cover --area 3,2 --content 4,3 --center 0,0", "--angle is missing"},
      {"cover --area 3,2 --content 4,3 --center 0,0 --angle 1 --svg x.png",
       "x.png is not a name for SVG"},
      {"gradient --kind hue --out x.png", "--size is missing"},
      {"gradient --kind hue --size 4x4", "--out is missing"},
      {"gradient --kind hue --size 4x4 --out x.png more", R"("more" is one argument too many)"},
      {"gradient --kind round --size 4x4 --out x.png", "--kind is linear, radial, conical, hue,"},
      {"gradient --kind linear --size 4x4 --out x.png", "--colors is missing"},
      {"gradient --kind hue --colors '#FF0000' --size 4x4 --out x", "--colors is not for hue"},
      {"gradient --kind linear --colors '#FF000' --size 4x4 --out x", "--colors is like #FF8000"},
      {"gradient --kind linear --colors '#FF0000,#0xFF00' --size 4x4 --out x", "--colors is like"},
      {"gradient --kind linear --colors '#FF0000,' --size 4x4 --out x", "--colors is like"},
      {"gradient --kind hue --size 4 --out x", R"(--size is like 640x480, up to 65535, not "4")"},
      {"gradient --kind hue --size 4x --out x", "--size is like"},
      {"gradient --kind hue --size 0x4 --out x", "--size is like"},
      {"gradient --kind hue --size 4x4x4 --out x", "--size is like"},
      {"gradient --kind hue --size 4x65536 --out x", "--size is like"},
      {"gradient --kind hue --size 4x99999999999 --out x", "--size is like"},
      {"gradient --kind hue --size 4x4 --out x.webp", "WEBP is not written here"}};
  for (const auto& [arguments, problem] : cases) {
    SCOPED_TRACE(arguments);
    const ProgramResult result = testing::runProgram("'" KVTOOL "' " + arguments, folder.path());
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.problems, StartsWith("kvtool: " + problem));
    EXPECT_THAT(result.problems, EndsWith(" --help)\n"));
    EXPECT_EQ(std::count(result.problems.begin(), result.problems.end(), '\n'), 1);
  }
  for (const char* name : {"x", "x.png", "x.webp", "x.jpg"}) {
    EXPECT_FALSE(std::filesystem::exists(folder.path(name))) << name;
  }
}

TEST(CommandLineTest, EveryCommandHasHelpWithExamples) {
  const testing::TemporaryFolder folder;
  for (const char* command :
       {"", "metadata ", "save ", "thumbnail ", "cover ", "palette ", "gradient "}) {
    const ProgramResult help =
        testing::runProgram(std::string("'" KVTOOL "' ") + command + "-h", folder.path());
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_THAT(help.output, HasSubstr("Examples:\n  kvtool "));
  }
  EXPECT_THAT(testing::runProgram("'" KVTOOL "' --version", folder.path()).output,
              MatchesRegex("kvtool [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

}  // namespace
}  // namespace FrameworkUtility
