#include <framework_utility/platform/graphics/cg_context.h>
#include <framework_utility/platform/graphics/gradient_kernels.h>

#include <tests/platform/graphics/exact_gradient.h>
#include <tests/platform/graphics/pictures.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>
#include <type_traits>
#include <utility>
#include <vector>

namespace FrameworkUtility {
namespace {

using namespace testing;
using enum CGImageAlphaInfo;
using Kind = ExactGradient::Kind;

// Of a temporary, nothing refers to it.
static_assert(!std::is_reference_v<decltype(std::declval<CGGradient>().stops())>);

CGGradient gradientOf(const ExactGradient& exact) {
  std::vector<CGColor> colors;
  for (const RGBA& color : exact.colors) colors.push_back({color});
  return *CGGradient::createWithColors(colors, exact.locations);
}

void draw(CGContext& context, const ExactGradient& exact) {
  if (exact.kind == Kind::linear) {
    context.drawLinearGradient(gradientOf(exact), exact.start, exact.end);
  } else {
    context.drawRadialGradient(gradientOf(exact), exact.start, exact.radius);
  }
}

CGImage drawn(const ExactGradient& exact, std::size_t width, std::size_t height, double scale = 1) {
  const auto context = contextOf(width, height, scale);
  draw(*context, exact);
  return *context->createImage();
}

const RGBA red{1, 0, 0, 1};
const RGBA green{0, 1, 0, 1};
const RGBA blue{0, 0, 1, 1};
const RGBA clearGold{1, 0.8, 0.1, 0.05};
const RGBA slate{0.33, 0.4, 0.52, 0.7};

struct Stops {
  const char* name;
  std::vector<RGBA> colors;
  std::vector<double> locations;
};

const std::vector<Stops> everyKindOfStops = {
    {"even", {red, green, blue}, {0, 0.5, 1}},
    {"hard edges", {red, blue, green, red, blue}, {0.1, 0.1, 0.5, 0.5, 0.8}},
    {"three at one place", {red, green, blue, slate}, {0.25, 0.25, 0.25, 1}},
    {"alpha", {clearGold, blue, slate, {1, 1, 1, 0}}, {0, 0.3, 0.7, 1}},
    {"unsorted", {red, green, blue}, {0.9, 0.2, 0.6}},
    {"beyond both ends", {red, slate, blue}, {-0.5, 0.4, 1.7}},
    {"steep", {red, blue, green, red}, {0.3, 0.3 + 1e-9, 0.6, 0.6 + 1e-3}},
    {"one", {slate}, {0.4}},
    {"just before the start", {red, slate, blue, green}, {-0.2, -0.1, 0.6, 1}},
};

/// From edge to edge both ways, along the diagonal, at random angles through and past the picture;
/// circles about the middle and about places outside.
std::vector<ExactGradient> gradientsOver(std::size_t pixelsWide, std::size_t pixelsHigh,
                                         const Stops& stops, std::mt19937& random) {
  const auto width = static_cast<double>(pixelsWide), height = static_cast<double>(pixelsHigh);
  const auto fraction = [&] { return std::uniform_real_distribution<>(-0.5, 1.5)(random); };
  const auto anywhere = [&] { return Point{fraction() * width, fraction() * height}; };
  const auto& [name, colors, at] = stops;
  return {
      {Kind::linear, colors, at, {0, 0}, {width, 0}},
      {Kind::linear, colors, at, {0, height}, {0, 0}},
      {Kind::linear, colors, at, {0, 0}, {width, height}},
      {Kind::linear, colors, at, anywhere(), anywhere()},
      {Kind::radial, colors, at, {width / 2, height / 2}, {}, std::hypot(width, height) / 2},
      {Kind::radial, colors, at, anywhere(), {}, std::hypot(width, height) * (fraction() + 0.6)}};
}

TEST(CGContextTest, EveryPixelIsExact) {
  std::vector<std::pair<std::size_t, std::size_t>> sizes = {
      {4096, 4096}, {4096, 3}, {2, 4096}, {57, 1900}, {2500, 700}};
  for (std::size_t i = 0; i < 32 * 32; ++i) sizes.emplace_back(i % 32 + 1, i / 32 + 1);
  std::mt19937 random(1);
  for (const Stops& stops : everyKindOfStops) {
    SCOPED_TRACE(stops.name);
    for (const auto& [width, height] : sizes) {
      // Each size with each kind of stops; the gradients take turns.
      const auto gradients = gradientsOver(width, height, stops, random);
      const ExactGradient& gradient = gradients[(width * 5 + height * 7) % gradients.size()];
      expectExact(drawn(gradient, width, height), gradient, 1, height < 100 ? 1 : height / 4);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(CGContextTest, OddGradientsAreExactToo) {
  const ExactGradient gradients[] = {
      // The first pixel's centre stands at 1/10, which is less than the double 0.1, and that of the
      // third just at 1/2, where the later colour has begun.
      {Kind::linear, {red, blue, blue, green}, {0.1, 0.1, 0.5, 0.5}, {0, 0}, {5, 0}},
      // Nowhere to go: the last colour everywhere.
      {Kind::linear, {blue, red, green}, {0.2, 1, 0.5}, {4, 4}, {4, 4}},
      {Kind::radial, {blue, red, green}, {0.2, 1, 0.5}, {4, 4}, {}, 0},
      // Far away or tiny.
      {Kind::radial, {red, green, blue}, {0.999999, 0.9999995, 1}, {3e8, -4e8}, {}, 5e8},
      {Kind::radial, {red, green}, {0.5, std::nextafter(0.5, 1.0)}, {-1e18, 0}, {}, 2e18},
      // Squares that overflow: of a float, of a double, and beyond the last stop.
      {Kind::radial, {red, green}, {0, 1}, {-1e25, 0}, {}, 2e25},
      {Kind::radial, {clearGold, slate}, {0, 1}, {1e200, -1e200}, {}, 2e200},
      {Kind::radial, {red, green}, {0, 1e30}, {-1e30, 0}, {}, 1},
      {Kind::radial, {red, green}, {0, 1}, {-1e25, 1e300}, {}, 1e25},
      {Kind::linear, {red, green}, {0.5, 0.50000001}, {-1e9, 7}, {1e9, 7}},
      {Kind::linear, {red, green}, {0, 1}, {16.25, 16}, {16.25 + 1e-200, 16}},
      {Kind::radial, {red, green}, {0, 1}, {16.25, 16}, {}, 1e-200},
      {Kind::linear, {red, green}, {0, 1}, {16, 16}, {1e300, 16}},
  };
  for (const ExactGradient& gradient : gradients) {
    expectExact(drawn(gradient, 33, 32), gradient);
    ASSERT_FALSE(HasFatalFailure()) << &gradient - gradients;
  }
}

TEST(CGContextTest, PointsFollowTheTransform) {
  // Turned by 30 degrees, stretched and moved; mirrored as a fresh bitmap is.
  const double angle = std::numbers::pi / 6, c = std::cos(angle), s = std::sin(angle);
  for (const Kind kind : {Kind::linear, Kind::radial}) {
    const ExactGradient gradient{kind, {red, green, slate}, {0, 0.4, 1}, {2, 3}, {9, 8}, 11};
    const auto context = CGContext::createBitmap(40, 30);
    context->concatCTM({3 * c, 3 * s, -s, c, 5, -2});
    draw(*context, gradient);
    expectExactAt(*context->createImage(), gradient, [&](long double x, long double y) {
      const long double right = x - 5, up = 30 - y + 2;
      return std::pair((right * c + up * s) / 3, up * c - right * s);
    });
  }
}

TEST(CGContextTest, DrawsOverWhatIsThere) {
  const ExactGradient veil{Kind::linear, {clearGold, slate}, {0, 1}, {0, 0}, {16, 0}};
  const ExactGradient ground{Kind::linear, {red, blue}, {0, 1}, {0, 0}, {0, 4}};
  const auto context = contextOf(16, 4);
  draw(*context, ground);
  const CGImage before = *context->createImage();
  draw(*context, veil);
  const CGImage after = *context->createImage();
  expectExact(before, ground);  // the image stayed as it was
  for (std::size_t i = 0; i < 4 * 64; ++i) {
    const std::size_t x = i / 4 % 16, y = i / 64, c = i % 4;
    const auto above = veil.levelsAt((static_cast<long double>(x) + 0.5L) / 16);
    const long double expected = above[c] + pixelAt(before, x, y)[c] * (1 - above[3] / 255);
    // The colour, its alpha and the product with what is below are rounded, half a level each.
    ASSERT_NEAR(pixelAt(after, x, y)[c], static_cast<double>(expected), 1.5) << i;
  }
}

TEST(CGContextTest, FreshBitmapsAreClearOrBlack) {
  for (const auto& [info, alpha] : {std::pair{premultipliedLast, 0}, {noneSkipLast, 255}}) {
    const CGImage image = *CGContext::createBitmap(3, 2, info)->createImage();
    EXPECT_EQ(image.alphaInfo(), info);
    EXPECT_EQ(pixelAt(image, 2, 1), (Pixel{0, 0, 0, static_cast<std::uint8_t>(alpha)}));
    EXPECT_EQ(*image.colorSpace(), CGColorSpace::createDeviceRGB());
  }
}

TEST(CGContextTest, MemoryThatIsGivenIsDrawnIntoInItsLayout) {
  CGImageLayout layout = layoutOf(5, 3, 4, premultipliedLast);
  layout.bytesPerRow += 7;
  std::vector<std::byte> memory(layout.bytesPerRow * 3 + 1, std::byte{0xAB});
  const auto bytes = std::span(memory).subspan(1);  // rows begin at odd places
  const ExactGradient gradient{Kind::linear, {red, green}, {0, 1}, {0, 0}, {1.5, 2.1}};
  const auto context = CGContext::createBitmapWithData(bytes, layout);
  ASSERT_TRUE(context);
  context->concatCTM({1, 0, 0, -1, 0, 3});
  draw(*context, gradient);
  const auto image = CGImage::create(layout, CGColorSpace::createDeviceRGB(), Data(bytes));
  expectExact(*image, gradient);
  EXPECT_EQ(image->pixels(), context->createImage()->pixels());
  context->setFillColor({blue});
  context->fillRect({4, 0, 9, 1});
  EXPECT_EQ(bytes[16 + 2], std::byte{255});
  for (std::size_t i = 0; i < memory.size(); ++i) {
    const bool isPixel = i > 0 && (i - 1) % 27 < 20;
    EXPECT_TRUE(isPixel || memory[i] == std::byte{0xAB}) << i;
  }
}

TEST(CGContextTest, RefusesBitmapsThatItCannotDrawInto) {
  constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
  for (const auto& [width, height] : {std::pair{std::size_t{0}, std::size_t{5}},
                                      {5, 0},
                                      {most, most},
                                      {most / 4 + 2, 1},
                                      {1'000'000, 1'000'000}}) {
    EXPECT_FALSE(CGContext::createBitmap(width, height)) << width << ' ' << height;
  }
  for (const auto info : {none, premultipliedFirst, last, first, noneSkipFirst, alphaOnly}) {
    EXPECT_FALSE(CGContext::createBitmap(5, 5, info));
  }
  using L = CGImageLayout;
  using Order = CGImageByteOrder;
  std::vector<std::byte> memory(4 * 5 * 5);
  const L layout = layoutOf(5, 5, 4, premultipliedLast);
  for (const L& good : {layout, changed(layout, &L::byteOrder, Order::big32)}) {
    EXPECT_TRUE(CGContext::createBitmapWithData(memory, good));
  }
  const L odd[] = {changed(layout, &L::byteOrder, Order::little32),
                   changed(layout, &L::bytesPerRow, 19),
                   changed(layout, &L::bytesPerRow, 21),
                   changed(layout, &L::height, 6),
                   changed(layout, &L::height, 0),
                   changed(layout, &L::width, 0),
                   changed(layout, &L::width, most / 2),
                   changed(layout, &L::bitsPerComponent, 16),
                   changed(layout, &L::alphaInfo, last)};
  for (const L& bad : odd) EXPECT_FALSE(CGContext::createBitmapWithData(memory, bad)) << &bad - odd;
}

TEST(CGContextTest, DrawsNothingThatIsNotFinite) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const CGGradient gradient = *CGGradient::createWithColors({{red}, {blue}}, {0, 1});
  const auto context = CGContext::createBitmap(4, 4);
  for (const double odd : {nan, infinity, -infinity}) {
    context->drawLinearGradient(gradient, {odd, 0}, {4, 4});
    context->drawLinearGradient(gradient, {0, 0}, {4, odd});
    context->drawRadialGradient(gradient, {0, odd}, 4);
    context->drawRadialGradient(gradient, {0, 0}, odd);
  }
  context->drawRadialGradient(gradient, {0, 0}, -1);
  context->concatCTM({1, 1, 1, 1, 0, 0});
  context->drawLinearGradient(gradient, {0, 0}, {4, 4});
  EXPECT_EQ(testing::bytesOf(context->createImage()->pixels()), std::vector<std::uint8_t>(64));
}

TEST(CGGradientTest, KeepsStopsInOrderAndRefusesOddOnes) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const auto create = CGGradient::createWithColors;
  const auto gradient = create({{red}, {green}, {{2, -1, 0.5, 9}}, {blue}}, {0.5, 0.2, 0.5, -3});
  ASSERT_TRUE(gradient);
  const std::vector<CGGradient::Stop> expected = {
      {-3, blue}, {0.2, green}, {0.5, red}, {0.5, {1, 0, 0.5, 1}}};
  EXPECT_EQ(gradient->stops(), expected);
  EXPECT_TRUE(gradient->isOpaque());
  EXPECT_FALSE(create({{red}, {slate}}, {0, 1})->isOpaque());
  EXPECT_FALSE(create({}, {}));
  EXPECT_FALSE(create({{red}}, {}));
  EXPECT_FALSE(create({{red}}, {0, 1}));
  for (const double odd : {nan, infinity, -infinity}) {
    EXPECT_FALSE(create({{red}, {blue}}, {0, odd}));
    for (double RGBA::*component : {&RGBA::red, &RGBA::green, &RGBA::blue, &RGBA::alpha}) {
      RGBA color = slate;
      color.*component = odd;
      EXPECT_FALSE(create({{red}, {color}}, {0, 1}));
    }
  }
}

}  // namespace
}  // namespace FrameworkUtility

namespace FrameworkUtility::detail {
namespace {

/// Fills a run with the vector instructions that every machine has and with the widest of this one.
template <class Real, class Run>
void expectSameOnAllUnits(const RunColors<Real>& colors, const Run& run, bool isOpaque,
                          std::size_t pixels) {
  const auto filled = [&](InstructionSet instructions) {
    std::vector<std::uint8_t> row(4 * pixels + 1, 0xAB);
    fillRun(colors, run, isOpaque, row.data(), pixels, instructions);
    EXPECT_EQ(row.back(), 0xAB);
    return row;
  };
  ASSERT_EQ(filled(InstructionSet::baseline), filled(instructionSet())) << pixels << " pixels";
}

TEST(GradientKernelsTest, TheUnitsDoNotChangeTheResult) {
  if (instructionSet() == InstructionSet::baseline) GTEST_SKIP() << "this machine has no others";
  std::mt19937 random(1);
  const auto real = [&](double from, double to) {
    return std::uniform_real_distribution<>(from, to)(random);
  };
  for (std::size_t pixels = 0; pixels < 1000; pixels += 1 + pixels / 16) {
    RunColors<double> colors;
    RunColors<float> shorter;
    const double length = 1500;  // more than any position of these runs
    for (std::size_t c = 0; c < 4; ++c) {
      const double most = c < 3 ? 255 : 1;
      colors.base[c] = real(0, most);
      colors.step[c] = (real(0, most) - colors.base[c]) / length;
      shorter.base[c] = static_cast<float>(colors.base[c]);
      shorter.step[c] = static_cast<float>(colors.step[c]);
    }
    const RadialRun<double> circle{real(-500, 0), real(0, 500'000)};
    const RadialRun<float> shorterCircle{static_cast<float>(circle.along),
                                         static_cast<float>(circle.asideSquared)};
    for (const bool isOpaque : {true, false}) {
      expectSameOnAllUnits(shorter, StraightRun{}, isOpaque, pixels);
      expectSameOnAllUnits(shorter, shorterCircle, isOpaque, pixels);
      expectSameOnAllUnits(colors, circle, isOpaque, pixels);
    }
  }
}

}  // namespace
}  // namespace FrameworkUtility::detail
