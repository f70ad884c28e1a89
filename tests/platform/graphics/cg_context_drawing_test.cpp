#include <framework_utility/platform/graphics/cg_context.h>

#include <framework_utility/platform/foundation/app/application.h>
#include <framework_utility/platform/graphics/image_transform.h>
#include <framework_utility/platform/graphics/rgba_rows.h>
#include <framework_utility/platform/graphics/ui_graphics_image_renderer.h>
#include <framework_utility/platform/graphics/ui_image_drawing.h>
#include <tests/platform/graphics/pictures.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <tuple>

namespace FrameworkUtility {
namespace {

using namespace testing;
using enum CGImageAlphaInfo;

constexpr double infinite = std::numeric_limits<double>::infinity();
const CGColor white{{1, 1, 1, 1}};

std::vector<std::uint8_t> pixelsOf(CGContext& context) {
  const auto image = context.createImage();
  return image ? bytesOf(image->pixels()) : std::vector<std::uint8_t>();
}

Pixel pixelAt(CGContext& context, std::size_t x, std::size_t y) {
  return testing::pixelAt(*context.createImage(), x, y);
}

CGImage noiseImage(std::size_t width, std::size_t height) {
  return *CGImage::create(layoutOf(width, height, 4, noneSkipLast), CGColorSpace::createDeviceRGB(),
                          dataOf(noise(width * height * 4)));
}

TEST(CGContextDrawingTest, RectsFillWhatTheyCover) {
  const auto context = contextOf(8, 4);
  context->setFillColor({{1, 0, 0.5, 1}});
  context->fillRect({1, 1, 2.5, 2});
  EXPECT_EQ(pixelAt(*context, 1, 1), (Pixel{255, 0, 128, 255}));
  EXPECT_EQ(pixelAt(*context, 0, 1), (Pixel{0, 0, 0, 0}));
  EXPECT_EQ(pixelAt(*context, 1, 3), (Pixel{0, 0, 0, 0}));
  EXPECT_NEAR(pixelAt(*context, 3, 1)[3], 128, 8);  // half a pixel, on a grid of samples
  // A negative side is read as the standardised rect; blending is over what is there.
  context->setFillColor({{0, 2, -1, 0.5}});
  context->fillRect({3, 3, -2, -2});
  EXPECT_EQ(pixelAt(*context, 2, 2), (Pixel{127, 128, 64, 255}));
}

TEST(CGContextDrawingTest, CellsThatMeetLeaveNoPixelUncoveredAndNoneTwice) {
  const std::vector<Point> corners{{-30, -30}, {90, -30}, {90, 90}, {-30, 90}};
  for (const Point middle : {Point{32, 32}, Point{13.37, 47.71}, Point{-19.5, 60.1},
                             Point{63.99, 0.01}, Point{71.3, 33.25}}) {
    std::vector<int> sum(64 * 64);
    for (std::size_t i = 0; i < corners.size(); ++i) {
      const auto context = contextOf(64, 64);
      context->clipToPolygon({corners[i], corners[(i + 1) % corners.size()], middle});
      context->setFillColor(white);
      context->fillRect({-100, -100, 300, 300});
      const auto pixels = pixelsOf(*context);
      for (std::size_t p = 0; p < sum.size(); ++p) sum[p] += pixels[4 * p + 3];
    }
    for (const int covered : sum) ASSERT_EQ(covered, 255);
  }
}

TEST(CGContextDrawingTest, WindingTellsInsideFromOutside) {
  const auto context = contextOf(100, 100);
  std::vector<Point> star;  // five points, drawn in one go: its middle is gone round twice
  for (int i = 0; i < 5; ++i) {
    const double angle = 4 * std::numbers::pi / 5 * i;
    star.push_back({50 + 45 * std::sin(angle), 50 - 45 * std::cos(angle)});
  }
  context->clipToPolygon(star);
  // Twice round one way and once the other: still inside.
  const std::vector<Point> round{{0, 0}, {100, 0}, {100, 100}, {0, 100}};
  std::vector<Point> twice = round;
  twice.insert(twice.end(), round.begin(), round.end());
  twice.insert(twice.end(), {{0, 0}, {50, 100}, {100, 0}});
  context->clipToPolygon(twice);
  context->setFillColor(white);
  context->fillRect({0, 0, 100, 100});
  for (const auto& [x, y, alpha] :
       {std::tuple{50U, 50U, 255}, {50, 10, 255}, {50, 80, 0}, {10, 10, 0}, {15, 39, 255}}) {
    EXPECT_EQ(pixelAt(*context, x, y)[3], alpha) << x << ' ' << y;
  }
}

TEST(CGContextDrawingTest, ImagesInPlaceKeepTheirBytes) {
  const CGImage image = noiseImage(13, 7);
  constexpr std::size_t exif[] = {1, 3, 8, 6, 2, 4, 5, 7};
  for (std::int64_t orientation = 0; orientation < 8; ++orientation) {
    const UIImage turned(image, 1, UIImageOrientation{orientation});
    const auto upright = detail::rgbaPixels(*detail::uprightImage(image, exif[orientation]),
                                            detail::AlphaForm::premultiplied);
    const auto drawn = UIGraphicsImageRenderer(turned.size(), {.scale = 1})
                           .imageWithActions([&](CGContext& context) {
                             drawInRect(turned, context, Rect::rect(turned.size()));
                           });
    ASSERT_EQ(bytesOf(drawn->cgImage()->pixels()),
              std::vector(upright->data(), upright->data() + upright->size()))
        << orientation;
  }
}

TEST(CGContextDrawingTest, ReducedImagesAreAveragesAndEnlargedOnesLines) {
  const CGImage large = noiseImage(300, 200);
  const auto context = contextOf(40, 30);
  drawInRect(UIImage(large), *context, {3, 5, 30, 20});
  const CGImage drawn = *context->createImage(), average = *testing::reducedImage(large, 30);
  for (std::size_t i = 0; i < 600; ++i) {
    const Pixel found = testing::pixelAt(drawn, i % 30 + 3, i / 30 + 5);
    const Pixel expected = testing::pixelAt(average, i % 30, i / 30);
    for (std::size_t c = 0; c < 3; ++c) ASSERT_NEAR(found[c], expected[c], 1) << i;
  }

  // Black and white, stretched: grey between their middles, no seam of the clear ground at the
  // edge.
  const CGImage pair =
      *CGImage::create(layoutOf(2, 1, 1, none), CGColorSpace::createDeviceGray(), dataOf({0, 255}));
  const auto wide = contextOf(8, 1);
  drawInRect(UIImage(pair), *wide, {0, 0, 8, 1});
  const int ramp[] = {0, 0, 32, 96, 159, 223, 255, 255};
  for (std::size_t x = 0; x < 8; ++x) EXPECT_NEAR(pixelAt(*wide, x, 0)[0], ramp[x], 1) << x;
  EXPECT_EQ(pixelAt(*wide, 0, 0)[3], 255);
}

TEST(CGContextDrawingTest, TurnedImagesShowTheSamePlaces) {
  // Red grows to the right and green downwards, so that a colour tells where it is from.
  constexpr std::size_t side = 100;
  std::vector<std::uint8_t> bytes(4 * side * side, 255);
  for (std::size_t i = 0; i < side * side; ++i) {
    bytes[4 * i] = static_cast<std::uint8_t>(2 * (i % side));
    bytes[4 * i + 1] = static_cast<std::uint8_t>(2 * (i / side));
  }
  const CGImage image = *CGImage::create(layoutOf(side, side, 4, premultipliedLast),
                                         CGColorSpace::createDeviceRGB(), dataOf(bytes));
  const auto context = contextOf(200, 200);
  const double c = std::cos(0.4), s = std::sin(0.4);
  context->concatCTM({1.3 * c, 1.3 * s, -1.3 * s, 1.3 * c, 70, 20});
  drawInRect(UIImage(image), *context, {0, 0, side, side});
  for (const Point p : {Point{50, 50}, Point{10, 80}, Point{90, 15}}) {
    const Pixel pixel = pixelAt(*context, static_cast<std::size_t>(70 + 1.3 * (c * p.x - s * p.y)),
                                static_cast<std::size_t>(20 + 1.3 * (s * p.x + c * p.y)));
    EXPECT_NEAR(pixel[0], 2 * p.x, 3);
    EXPECT_NEAR(pixel[1], 2 * p.y, 3);
    EXPECT_EQ(pixel[3], 255);
  }
}

TEST(CGContextDrawingTest, ColoursAreBroughtIntoTheContextsSpace) {
  const CGColorSpace p3 = *CGColorSpace::createWithName(kCGColorSpaceDisplayP3);
  for (const auto alphaInfo : {noneSkipLast, premultipliedLast}) {
    const CGImage image =
        *CGImage::create(layoutOf(1, 1, 4, alphaInfo), p3, dataOf({100, 50, 50, 128}));
    const auto context = contextOf(1, 1);
    drawInRect(UIImage(image), *context, {0, 0, 1, 1});
    const Pixel pixel = pixelAt(*context, 0, 0);
    EXPECT_GT(pixel[0], 104);  // Display P3's red is the stronger one
    EXPECT_LT(pixel[1], 50);
    EXPECT_EQ(pixel[3], alphaInfo == noneSkipLast ? 255 : 128);
  }
}

TEST(CGContextDrawingTest, GradientsStayWithinTheClip) {
  const CGGradient gradient =
      *CGGradient::createWithColors({{{1, 0, 0, 1}}, {{0, 0, 1, 0.3}}}, {0, 1});
  const auto whole = contextOf(50, 40), part = contextOf(50, 40);
  whole->drawLinearGradient(gradient, {0, 0}, {50, 40});
  part->saveGState();
  part->clipToPolygon({{10, 10}, {30, 10}, {30, 25}, {10, 25}});
  part->drawLinearGradient(gradient, {0, 0}, {50, 40});
  EXPECT_EQ(pixelAt(*part, 20, 20), pixelAt(*whole, 20, 20));
  EXPECT_EQ(pixelAt(*part, 9, 20), (Pixel{0, 0, 0, 0}));
  EXPECT_EQ(pixelAt(*part, 20, 25), (Pixel{0, 0, 0, 0}));
  for (int i = 0; i < 2; ++i) part->restoreGState();  // one too many changes nothing
  part->drawLinearGradient(gradient, {0, 0}, {50, 40});
  EXPECT_EQ(pixelAt(*part, 49, 39), pixelAt(*whole, 49, 39));
}

TEST(CGContextDrawingTest, NumbersBeyondMeasureDrawWhatTheyCover) {
  const CGImage image = noiseImage(3, 3);
  for (const double v : {1e9, 1e29, 1e300, infinite, std::nan("")}) {
    const auto context = contextOf(8, 8);
    context->setFillColor(white);
    context->fillRect({-v, -v, 2 * v, 2 * v});
    EXPECT_EQ(pixelAt(*context, 4, 4)[3], v <= 1e29 ? 255 : 0) << v;
    context->drawImage(image, {-v, 2, 2 * v, 3});
    context->drawImage(image, {v, v, v, v});
    context->clipToPolygon({{0, 0}, {v, 0}, {v, -v}});
    context->fillRect({0, 0, 8, 8});
    EXPECT_TRUE(context->createImage());
  }
  const auto context = contextOf(8, 8);
  // Too thin to be seen, and no reason to lose the rest.
  for (const double height : {0.0, 1e-9, 1e-5}) context->drawImage(image, {0, 2.5, 8, height});
  EXPECT_TRUE(context->createImage());
  context->clipToPolygon({{1, 1}, {5, 5}});
  context->fillRect({0, 0, 8, 8});
  context->concatCTM({0, 0, 0, 0, 0, 0});
  context->drawImage(image, {0, 0, 3, 3});
  EXPECT_EQ(pixelsOf(*context), std::vector<std::uint8_t>(8 * 8 * 4));
}

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
  const auto expectRefused = [](Size size, double scale) {
    const auto draw = [](CGContext&) { ADD_FAILURE() << "drew"; };
    EXPECT_FALSE(UIGraphicsImageRenderer(size, {.scale = scale}).imageWithActions(draw)) << scale;
  };
  for (const double side : {0.0, -1.0, std::nan(""), infinite, -infinite, 1e9, 1e300}) {
    expectRefused({side, 4}, 1);
    expectRefused({4, side}, 1);
  }
  for (const double scale : {std::nan(""), infinite, 1e9}) expectRefused({4, 4}, scale);
}

}  // namespace
}  // namespace FrameworkUtility
