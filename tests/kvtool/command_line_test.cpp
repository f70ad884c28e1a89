#include <tests/kvtool/kvtool_test.h>

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <utility>

namespace FrameworkUtility {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using testing::ProgramResult;
using ::testing::StartsWith;

class CommandLineTest : public testing::KvtoolTest {
 protected:
  CommandLineTest() { write("a.png", testing::redAndBlue(4, 4), "png"); }

  void expectProblem(const std::string& arguments, const std::string& problem) const {
    SCOPED_TRACE(arguments);
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.problems, StartsWith("kvtool: " + problem));
    EXPECT_THAT(result.problems, EndsWith(" --help)\n"));
    EXPECT_EQ(std::count(result.problems.begin(), result.problems.end(), '\n'), 1);
  }
};

TEST_F(CommandLineTest, WhatCannotBeUnderstoodGivesTwoAndOneLine) {
  const std::string cover = "cover --area 3,2 --content 4,3 --center 0,0 ";
  const std::string linear = "gradient --kind linear --size 4x4 --out x ";
  const std::pair<std::string, std::string> cases[] = {
      {"", "no command is given (see kvtool --help)"},
      {"metdata a.png", "there is no command metdata; did you mean metadata? (see kvtool --help)"},
      {"--verson", "there is no option --verson; did you mean --version? (see kvtool --help)"},
      {"metadata", "FILE is missing (see kvtool metadata --help)"},
      {"metadata --jsn a.png",
       "there is no option --jsn; did you mean --json? (see kvtool metadata --help)"},
      {"metadata --json=maybe a.png", "--json takes no value"},
      {"save a.png --orientation", "--orientation needs a value"},
      {"save a.png --type webp", "WEBP is not written here, only JPEG and PNG"},
      {"save a.png --type nothing.known", "there is no type nothing.known"},
      {"save a.png --out x.png --type jpeg", "x.png is not a name for JPEG"},
      {"save a.png a.png --out x.png", "--out takes one picture; give --out-dir for several"},
      {"save a.png --out x.png --out-dir x", "--out and --out-dir exclude each other"},
      {"thumbnail a.png -s 9 -s 8 --out x", "--size is given twice"},
      {"thumbnail a.png --size 9", "--out or --out-dir is missing"},
      {"palette a.png --png x.jpg", "x.jpg is not a name for PNG"},
      {"palette a.png --json --png -", "--json and --png - both go to standard output"},
      {cover, "--angle is missing"},
      {cover + "--angle 1 --svg x.png", "x.png is not a name for SVG"},
      {"gradient --kind hue --out x.png", "--size is missing"},
      {"gradient --kind hue --size 4x4", "--out is missing"},
      {linear, "--colors is missing"},
      {linear + "more", R"("more" is one argument too many)"},
      {"gradient --kind hue --size 4x4 --out x --colors '#FF0000'", "--colors is not for hue"},
      {"gradient --kind hue --size 4x4 --out x.webp", "WEBP is not written here"}};
  for (const auto& [arguments, problem] : cases) expectProblem(arguments, problem);
  for (const char* name : {"x", "x.png", "x.webp", "x.jpg"}) {
    EXPECT_FALSE(std::filesystem::exists(path(name))) << name;
  }
}

TEST_F(CommandLineTest, ValuesThatAreNoneSayWhatOneIsLike) {
  struct Case {
    std::string arguments, problem;
    std::initializer_list<const char*> values;
  };
  const Case cases[] = {
      {"save a.png --quality ", "--quality is 0 to 1, not", {"2", "-0.1", "half"}},
      {"save a.png --orientation ", "--orientation is 1 to 8, not", {"9", "0"}},
      {"save a.png --session ", "--session is a name, not", {"../out"}},
      {"save a.png --date ",
       "--date is like 2024-05-06T07:08:09 or",
       {"yesterday", "2023-02-29T00:00:00", "2023-02-28T24:00:00", "2023-02-28T00:00:00+0200",
        "2023-02-28T00:00:00+15:00", "2023-02-28T00:00:00+14:60", "2023-02-28T00:00:00Z+14:00"}},
      {"save a.png --location ", "--location is like 48.2082,16.3738", {"91,0", "1,2,3,4", "1"}},
      {"save a.png --max-memory ", "--max-memory is a number above 0, alone or with KiB", {"1MB"}},
      {"thumbnail a.png --size 9 --out ", "--out is a name, not", {"''"}},
      {"thumbnail a.png --out x --size ", "--size is 1 to 65535, not", {"0", "65536"}},
      {"thumbnail a.png --max-pixels ", "--max-pixels is a number above 0, alone or with M", {"0"}},
      {"palette a.png --count ", "--count is 0 to 1000000, not", {"-1", "1000001", "many"}},
      {"palette a.png --quality ", "--quality is low, medium, high or full, not", {"best"}},
      {"cover --area ", "--area is like 300,200, both above 0", {"3,0", "inf,2", "3", "3,2,1"}},
      {"cover --content ", "--content is like 300,200, both above 0, not", {"4,-3"}},
      {"cover --center ", "--center is like 300,200, not", {"x,y"}},
      {"cover --angle ", "--angle is a number, not", {"nan"}},
      {"gradient --kind ", "--kind is linear, radial, conical, hue,", {"round"}},
      {"gradient --colors ",
       "--colors is like #FF8000",
       {"'#FF000'", "'#FF0000,#0xFF00'", "'#FF0000,'"}},
      {"gradient --size ",
       "--size is like 640x480, up to 65535, not",
       {"4", "4x", "0x4", "4x4x4", "4x65536", "4x99999999999"}}};
  for (const auto& [arguments, problem, values] : cases) {
    for (const char* value : values) expectProblem(arguments + value, problem);
  }
}

TEST_F(CommandLineTest, EveryCommandHasHelpWithExamples) {
  for (const char* command :
       {"", "metadata ", "save ", "thumbnail ", "cover ", "palette ", "gradient "}) {
    EXPECT_THAT(output(std::string(command) + "-h"), HasSubstr("Examples:\n  kvtool "));
  }
  EXPECT_THAT(output("--version"), MatchesRegex("kvtool [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

}  // namespace
}  // namespace FrameworkUtility
