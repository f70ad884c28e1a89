#include <framework_utility/platform/ui/geometry_text.h>

#include <gtest/gtest.h>

namespace FrameworkUtility {
namespace {

TEST(GeometryTextTest, PlacesReadBackAsTheSame) {
  EXPECT_EQ(NSStringFromCGPoint({-1.5, 2}), "{-1.5, 2}");
  EXPECT_EQ(NSStringFromCGRect({0.1, 0, 1e300, -4}), "{{0.1, 0}, {1e+300, -4}}");
  for (const Rect& rect : {Rect(0.1, 1.0 / 3, 1e300, -4), Rect()}) {
    EXPECT_EQ(CGRectFromString(NSStringFromCGRect(rect)), rect);
  }
  EXPECT_EQ(CGPointFromString(" { 1.50 ,\n2e1 } "), (Point{1.5, 20}));
  EXPECT_EQ(CGRectFromString("{{1,2},{0.10000000000000001,4}}"), Rect(1, 2, 0.1, 4));
}

TEST(GeometryTextTest, OtherTextsAreZero) {
  for (const char* text : {"", "{", "1, 2", "{1 2}", "{1, 2", "{1, 2} 3", "{a, 2}", "{{1, 2}}",
                           "{1, 2, 3}", "{, 2}"}) {
    EXPECT_EQ(CGPointFromString(text), Point()) << text;
  }
  for (const char* text : {"{1, 2}", "{{1, 2}, {3, 4}", "{{1, 2} {3, 4}}", "{{1, 2}, {3, 4}}}"}) {
    EXPECT_EQ(CGRectFromString(text), Rect()) << text;
  }
}

}  // namespace
}  // namespace FrameworkUtility
