#include <framework_utility/geometry/rectangle.h>
#include <tests/kvtool/kvtool_test.h>

#include <cstdio>

namespace FrameworkUtility {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class CoverCommandTest : public testing::KvtoolTest {};

TEST_F(CoverCommandTest, JsonReadsBackAsTheVeryNumbers) {
  const std::string json =
      output("cover --json --area=0.3,0.7 --content 1,1e3 --center -12.5,1e5 --angle -1e300");
  Point p1, p2, p3, p4;
  int end = 0;
  std::sscanf(
      json.c_str(),
      "{\"p1\": [%lf, %lf], \"p2\": [%lf, %lf], \"p3\": [%lf, %lf], \"p4\": [%lf, %lf]}\n%n", &p1.x,
      &p1.y, &p2.x, &p2.y, &p3.x, &p3.y, &p4.x, &p4.y, &end);
  EXPECT_EQ(end, static_cast<int>(json.size())) << json;
  EXPECT_EQ(KvRectangle(p1, p2, p3, p4).points(),
            KvRectangle(Size{0.3, 0.7})
                .rectangleFilledWithRectRotated({1, 1e3}, {-12.5, 1e5}, -1e300)
                .points());
}

TEST_F(CoverCommandTest, PrintsCornersSizeAndZoomAndDrawsBoth) {
  EXPECT_EQ(output("cover --area 100,50 --content 2,1 --center 50,25 --angle 1.5707963267948966 "
                   "--svg cover.svg"),
            "p1        0.000    125.000\n"
            "p2        0.000    -75.000\n"
            "p3      100.000    -75.000\n"
            "p4      100.000    125.000\n"
            "size    200.000    100.000\n"
            "zoom      2.000\n");
  EXPECT_THAT(contents("cover.svg"), StartsWith("<svg xmlns="));
  EXPECT_THAT(contents("cover.svg"), HasSubstr("points=\"0,0 100,0 100,50 0,50 \""));
  EXPECT_THAT(contents("cover.svg"), EndsWith("</svg>\n"));
}

}  // namespace
}  // namespace FrameworkUtility
