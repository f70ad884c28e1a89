#include <framework_utility/geometry/rectangle.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <tests/support/files.h>
#include <tests/support/run_program.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace FrameworkUtility {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using testing::ProgramResult;
using ::testing::StartsWith;

class CoverCommandTest : public ::testing::Test {
 protected:
  ProgramResult run(const std::string& arguments) const {
    return testing::runProgram("'" KVTOOL "' cover " + arguments, folder_.path());
  }

  const testing::TemporaryFolder folder_;
};

TEST_F(CoverCommandTest, JsonReadsBackAsTheVeryNumbers) {
  const struct {
    const char* arguments;
    Size area, content;
    Point center;
    double angle;
  } cases[] = {{"--area 300,200 --content 4032,3024 --center 150,100 --angle 0.12",
                {300, 200},
                {4032, 3024},
                {150, 100},
                0.12},
               {"--area 0.3,0.7 --content 1,1e3 --center -12.5,1e5 --angle -1e300",
                {0.3, 0.7},
                {1, 1e3},
                {-12.5, 1e5},
                -1e300},
               {"--area=3,2 --content=4,3 --center=0,0 --angle=0", {3, 2}, {4, 3}, {0, 0}, 0}};
  for (const auto& [arguments, area, content, center, angle] : cases) {
    SCOPED_TRACE(arguments);
    const ProgramResult result = run(std::string("--json ") + arguments);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.problems, "");
    Point p1, p2, p3, p4;
    int end = 0;
    std::sscanf(
        result.output.c_str(),
        "{\"p1\": [%lf, %lf], \"p2\": [%lf, %lf], \"p3\": [%lf, %lf], \"p4\": [%lf, %lf]}\n%n",
        &p1.x, &p1.y, &p2.x, &p2.y, &p3.x, &p3.y, &p4.x, &p4.y, &end);
    EXPECT_EQ(end, static_cast<int>(result.output.size())) << result.output;
    EXPECT_EQ(KvRectangle(p1, p2, p3, p4).points(),
              KvRectangle(area).rectangleFilledWithRectRotated(content, center, angle).points());
  }
}

TEST_F(CoverCommandTest, PrintsCornersSizeAndZoom) {
  EXPECT_EQ(run("--area 100,50 --content 2,1 --center 50,25 --angle 1.5707963267948966").output,
            "p1        0.000    125.000\n"
            "p2        0.000    -75.000\n"
            "p3      100.000    -75.000\n"
            "p4      100.000    125.000\n"
            "size    200.000    100.000\n"
            "zoom      2.000\n");
}

TEST_F(CoverCommandTest, DrawsBoth) {
  const ProgramResult result =
      run("--area 3,2 --content 4,3 --center 1.5,1 --angle 0.5 --svg cover.svg");
  EXPECT_EQ(result.exitCode, 0);
  const std::string svg =
      testing::contentsOf(FileManager::defaultManager(), folder_.path("cover.svg")).value_or("");
  EXPECT_THAT(svg, StartsWith("<svg xmlns="));
  EXPECT_THAT(svg, HasSubstr("points=\"0,0 3,0 3,2 0,2 \""));
  EXPECT_THAT(svg, EndsWith("</svg>\n"));
}

TEST_F(CoverCommandTest, WhatHasNoAnswerIsReported) {
  for (const char* arguments :
       {"--area 3,2 --content 4,3 --center 0,0 --angle 0.5 --svg no/folder.svg",
        "--area 3,2 --content 4,3 --center 1e308,-1e308 --angle 1"}) {
    SCOPED_TRACE(arguments);
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.problems, StartsWith("kvtool: "));
  }
}

}  // namespace
}  // namespace FrameworkUtility
