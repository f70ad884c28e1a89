#include <framework_utility/color/gradient.h>

#include <tests/platform/graphics/exact_gradient.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <set>

namespace FrameworkUtility {
namespace {

using ::testing::ElementsAre;
using testing::ExactGradient;
using enum KvGradientType;
using enum GradientDirection;

const KvColor red{1, 0, 0};
const KvColor green{0, 1, 0};
const KvColor blue{0, 0, 1};
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// What only a layer shows.
std::vector<double> locationsOf(const KvGradient& gradient) {
  CAGradientLayer layer;
  gradient.configureGradientLayer(layer);
  return *layer.locations;
}

TEST(KvGradientTypeTest, HasTwoRawValues) {
  EXPECT_EQ(fromRawValue<KvGradientType>(0), linear);
  EXPECT_EQ(fromRawValue<KvGradientType>(1), radial);
  for (const std::int64_t other : {-1L, 2L, 1L << 32}) {
    EXPECT_FALSE(fromRawValue<KvGradientType>(other));
  }
  EXPECT_TRUE(isLinear(linear) && !isLinear(radial) && isRadial(radial) && !isRadial(linear));
}

TEST(KvGradientTest, DirectionsRunFromEdgeToEdge) {
  const KvGradient down({red, blue}, vertical);
  EXPECT_EQ(down.type, linear);
  EXPECT_EQ(down.startPointNormalized, (Point{0, 0}));
  EXPECT_EQ(down.endPointNormalized, (Point{0, 1}));
  EXPECT_EQ(KvGradient({red, blue}, {0.2, 0.3}, horizontal).endPointNormalized, (Point{1, 0}));
  EXPECT_EQ(KvGradient(radial, {red}, {0}).endPointNormalized, (Point{1, 1}));
}

TEST(KvGradientTest, EvenLocationsAreSums) {
  const auto even = [](std::size_t count) {
    return locationsOf(KvGradient(std::vector<KvColor>(count, red), horizontal));
  };
  EXPECT_THAT(even(1), ElementsAre(0.0));
  EXPECT_THAT(even(2), ElementsAre(0.0, 1.0));
  EXPECT_THAT(even(3), ElementsAre(0.0, 0.5, 1.0));
  // A multiple of the step would end in 1.
  EXPECT_EQ(even(7)[5], 0.8333333333333333);
  EXPECT_EQ(even(7)[6], 0.9999999999999999);
  for (const double location : even(12)) EXPECT_LE(location, 1);
  EXPECT_DEATH(KvGradient({}, horizontal), "KvGradient: there are no colours");
}

TEST(KvGradientTest, RandomOnesHaveTwoToSixColors) {
  std::set<std::size_t> counts;
  std::set<KvGradientType> types;
  std::set<double> components;
  for (int i = 0; i < 500; ++i) {
    const KvGradient gradient = KvGradient::random();
    const std::vector<double> locations = locationsOf(gradient);
    counts.insert(gradient.colors.size());
    types.insert(gradient.type);
    ASSERT_EQ(locations.size(), gradient.colors.size());
    for (std::size_t k = 0; k < locations.size(); ++k) {
      ASSERT_EQ(locations[k], static_cast<double>(k) / static_cast<double>(locations.size() - 1));
      const KvColor& color = gradient.colors[k];
      ASSERT_EQ(color.alpha, 1);
      components.insert({color.red, color.green, color.blue});
    }
    for (const Point point : {gradient.startPointNormalized, gradient.endPointNormalized}) {
      ASSERT_TRUE(point.x >= 0 && point.x <= 1 && point.y >= 0 && point.y <= 1);
    }
  }
  EXPECT_THAT(counts, ElementsAre(2U, 3U, 4U, 5U, 6U));
  EXPECT_THAT(types, ElementsAre(linear, radial));
  // 3000 uniform numbers at least: none below a tenth has a chance of 1e-137.
  EXPECT_TRUE(*components.begin() >= 0 && *components.begin() < 0.1);
  EXPECT_TRUE(*components.rbegin() <= 1 && *components.rbegin() > 0.9);
}

TEST(KvGradientTest, MismatchedStopsHaveNoCGGradientAndDrawNothing) {
  const KvGradient odd[] = {{linear, {}, {}},
                            {linear, {red}, {}},
                            {linear, {red, green}, {0, nan}},
                            {linear, {red, {nan, 0, 0}}, {0, 1}}};
  const auto context = CGContext::createBitmap(4, 4);
  for (const KvGradient& gradient : odd) {
    EXPECT_FALSE(gradient.cgGradient());
    gradient.drawInContex(*context, {4, 4});
  }
  const KvGradient whole({red, green}, vertical);
  EXPECT_EQ(whole.cgGradient()->stops()[1], (CGGradient::Stop{1, {0, 1, 0, 1}}));
  for (const double side : {0.0, 2.220446049250313e-16, -4.0, nan}) {
    whole.drawInContex(*context, {side, 4});
    whole.drawInContex(*context, {4, side});
  }
  KvGradient nowhere = whole;
  nowhere.endPointNormalized.y = nan;
  nowhere.drawInContex(*context, {4, 4});
  const Data pixels = context->createImage()->pixels();
  for (const std::byte byte : pixels) ASSERT_EQ(byte, std::byte{0});
}

TEST(KvGradientTest, DrawsWithThePointsScaledToTheSize) {
  const auto drawn = [](const KvGradient& gradient) {
    const auto context = CGContext::createBitmap(200, 100);
    context->concatCTM({1, 0, 0, -1, 0, 100});
    gradient.drawInContex(*context, {200, 100});
    return *context->createImage();
  };
  ExactGradient expected;
  expected.colors = {{1, 0, 0, 1}, {0, 1, 0, 0.5}, {0, 0, 1, 1}};
  expected.locations = {0, 0.3, 1};
  const std::vector<KvColor> colors = {red, green.withAlphaComponent(0.5), blue};

  expected.kind = ExactGradient::Kind::radial;
  expected.start = {100, 50};
  expected.radius = 100;
  expectExact(drawn({radial, colors, expected.locations, {0.5, 0.5}, {1, 0.5}}), expected);

  expected.kind = ExactGradient::Kind::linear;
  expected.start = {20, 90};
  expected.end = {150, 25};
  expectExact(drawn({linear, colors, expected.locations, {0.1, 0.9}, {0.75, 0.25}}), expected);
}

TEST(KvGradientTest, ALayerRunsDiagonally) {
  CAGradientLayer layer;
  KvGradient({red, blue}, {0.25, 0.5}, horizontal).configureGradientLayer(layer);
  EXPECT_EQ(layer.type, "axial");
  EXPECT_EQ(layer.startPoint, (Point{0, 0}));
  EXPECT_EQ(layer.endPoint, (Point{1, 1}));  // not (1, 0), which is meant
  EXPECT_EQ(layer.locations, (std::vector<double>{0.25, 0.5}));
  EXPECT_EQ(layer.colors, KvColor::cgColors({red, blue}));
  KvGradient(radial, {red}, {0}, {0.5, 0.25}, {0.8, 0.65}).configureGradientLayer(layer);
  EXPECT_EQ(layer.type, "radial");
  EXPECT_DOUBLE_EQ(layer.endPoint.x, 1);
  EXPECT_DOUBLE_EQ(layer.endPoint.y, 0.75);
}

TEST(KvGradientTest, EqualityKnowsItsTolerances) {
  const KvGradient gradient(linear, {{0.501, 0, 0}, blue}, {0, 0.5}, {0.25, 0.5}, {1, 1});
  using Change = void (*)(KvGradient&);
  for (const Change change : {Change([](KvGradient& g) { g.colors[0].red = 0.505; }),
                              Change([](KvGradient& g) { g.startPointNormalized.x += 0x1p-53; }),
                              Change([](KvGradient& g) { g.endPointNormalized.y += 0x1p-52; })}) {
    KvGradient other = gradient;
    change(other);
    EXPECT_TRUE(gradient == other);
  }
  const Change changes[] = {[](KvGradient& g) { g.type = radial; },
                            [](KvGradient& g) { g.colors[0].red = 0.511; },
                            [](KvGradient& g) { g.colors.push_back(red); },
                            [](KvGradient& g) { g.startPointNormalized.x = nan; },
                            [](KvGradient& g) { g.endPointNormalized.y += 0x1p-51; },
                            [](KvGradient& g) {
                              g = {linear, g.colors, {0, 0.5 + 0x1p-53}, {0.25, 0.5}, {1, 1}};
                            }};
  for (std::size_t i = 0; i < std::size(changes); ++i) {
    KvGradient other = gradient;
    changes[i](other);
    EXPECT_FALSE(gradient == other) << i;
  }
}

TEST(KvGradientTest, StopsAtATypeThatIsNone) {
  KvGradient gradient({red, blue}, vertical);
  gradient.type = static_cast<KvGradientType>(2);
  const auto context = CGContext::createBitmap(2, 2);
  EXPECT_DEATH((void)gradient.caType(), "neither linear nor radial");
  EXPECT_DEATH(gradient.drawInContex(*context, {2, 2}), "neither linear nor radial");
}

}  // namespace
}  // namespace FrameworkUtility
