#include <framework_utility/platform/graphics/ui_graphics_image_renderer.h>

#include <framework_utility/platform/foundation/app/application.h>
#include <tests/platform/graphics/pictures.h>

#include <gtest/gtest.h>

#include <limits>

namespace FrameworkUtility {
namespace {

void drawNothing(CGContext&) {}

TEST(UIGraphicsImageRendererTest, PixelsFollowScaleAndOpacity) {
  const UIGraphicsImageRenderer renderer({3, 2.5}, {.scale = 1.5, .opaque = true});
  const auto image = renderer.imageWithActions([](CGContext& context) {
    // Points begin at the top left: three black lines, then red from the middle on.
    const RGBA red{1, 0, 0, 1};
    const auto gradient =
        CGGradient::createWithColors({{{0, 0, 0, 1}}, {red}, {red}}, {0.5, 0.5, 1});
    context.drawLinearGradient(*gradient, {0, 0}, {0, 4});
  });
  ASSERT_TRUE(image);
  EXPECT_EQ(image->scale(), 1.5);
  EXPECT_EQ(image->imageOrientation(), UIImageOrientation::up);
  const CGImage& bitmap = *image->cgImage();
  EXPECT_EQ(bitmap.width(), 5U);  // 4.5
  EXPECT_EQ(bitmap.height(), 4U);
  EXPECT_EQ(bitmap.alphaInfo(), CGImageAlphaInfo::noneSkipLast);
  for (std::size_t y = 0; y < 4; ++y) {
    EXPECT_EQ(testing::pixelAt(bitmap, 0, y)[0], y < 3 ? 0 : 255) << y;
  }

  const auto clear = UIGraphicsImageRenderer({2, 2}, {.scale = 1}).imageWithActions(drawNothing);
  EXPECT_EQ(clear->cgImage()->alphaInfo(), CGImageAlphaInfo::premultipliedLast);
}

TEST(UIGraphicsImageRendererTest, WithoutAScaleItIsTheMainScreens) {
  Application facts = systemApplication();
  facts.mainScreenScale = 3;
  setApplication(facts);
  for (const double scale : {0.0, -1.0}) {
    const auto image =
        UIGraphicsImageRenderer({2, 1}, {.scale = scale}).imageWithActions(drawNothing);
    EXPECT_EQ(image->scale(), 3);
    EXPECT_EQ(image->cgImage()->width(), 6U);
  }
}

TEST(UIGraphicsImageRendererTest, ImpossibleSizesGiveNoImage) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const auto refuses = [](Size size, double scale) {
    return !UIGraphicsImageRenderer(size, {.scale = scale}).imageWithActions([](CGContext&) {
      ADD_FAILURE() << "drew";
    });
  };
  for (const double side : {0.0, -1.0, nan, infinity, -infinity, 1e9, 1e300}) {
    EXPECT_TRUE(refuses({side, 4}, 1)) << side;
    EXPECT_TRUE(refuses({4, side}, 1)) << side;
  }
  for (const double scale : {nan, infinity, 1e9}) EXPECT_TRUE(refuses({4, 4}, scale)) << scale;
}

}  // namespace
}  // namespace FrameworkUtility
