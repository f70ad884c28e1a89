#include <framework_utility/color/images/color_analysis.h>
#include <framework_utility/color/images/gradient_image.h>
#include <framework_utility/platform/graphics/rgba_rows.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>
#include <framework_utility/platform/imageio/ui_image_coding.h>
#include <tests/kvtool/kvtool_test.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <utility>
#include <vector>

namespace FrameworkUtility {
namespace {

using enum CGImageAlphaInfo;
using enum GradientDirection;

/// Six stripes, each half as wide as the one before it.
CGImage striped(CGImageAlphaInfo info) {
  constexpr std::size_t width = 252;
  constexpr std::size_t height = 120;
  constexpr std::array<std::array<int, 3>, 6> colors{
      {{200, 100, 50}, {0, 0, 0}, {255, 255, 255}, {0, 120, 0}, {0, 0, 200}, {250, 0, 250}}};
  std::vector<std::byte> pixels;
  for (std::size_t i = 0; i < width * height; ++i) {
    std::size_t stripe = 0;
    for (std::size_t end = 128; stripe < 5 && i % width >= 256 - end; end /= 2) ++stripe;
    for (const int component : colors[stripe]) pixels.push_back(static_cast<std::byte>(component));
    pixels.push_back(std::byte{255});
  }
  return *CGImage::create(
      {.width = width, .height = height, .bytesPerRow = width * 4, .alphaInfo = info},
      CGColorSpace::createDeviceRGB(), Data(std::move(pixels)));
}

class PaletteCommandTest : public testing::KvtoolTest {
 protected:
  PaletteCommandTest() {
    write("opaque.png", striped(noneSkipLast), "png");
    write("alpha.png", striped(last), "png");
  }
};

TEST_F(PaletteCommandTest, NamesTheColoursThatTheAnalysisFinds) {
  const std::string all = output("palette opaque.png --quality full --count 0");
  EXPECT_EQ(all,
            "#C86432  200 100  50\n#000000    0   0   0\n#FFFFFF  255 255 255\n"
            "#007800    0 120   0\n#0000C8    0   0 200\n#FA00FA  250   0 250\n");
  EXPECT_EQ(output("palette opaque.png --quality full --count 2"), all.substr(0, 42));
  EXPECT_EQ(output("palette opaque.png --quality full"), all.substr(0, 105)) << "five of them";

  for (const auto& [name, quality] : {std::pair{"low", UIImageAnalyzeColorQuality::low},
                                      {"medium", UIImageAnalyzeColorQuality::medium},
                                      {"high", UIImageAnalyzeColorQuality::high}}) {
    const auto found = analyzeImageAtUrl(URL::fileURLWithPath(path("opaque.png")), quality, 0);
    ASSERT_TRUE(found);
    const std::string lines = output(std::string("palette opaque.png --count 0 --quality ") + name);
    ASSERT_EQ(lines.size(), 21 * found->colors.size()) << name;
    for (std::size_t i = 0; i < found->colors.size(); ++i) {
      EXPECT_EQ(lines.substr(21 * i, 7), found->colors[i].hexString()) << name;
    }
  }
}

TEST_F(PaletteCommandTest, JsonHoldsTheVeryNumbers) {
  for (const auto& [name, hasAlpha] : {std::pair{"opaque.png", "false"}, {"alpha.png", "true"}}) {
    EXPECT_EQ(output(std::string("palette --json --quality full -c 1 ") + name),
              std::string(R"({"file": ")") + name + R"(", "containsAlpha": )" + hasAlpha +
                  R"(, "colors": [{"hex": "#C86432", "red": 0.7843137254901961, )"
                  R"("green": 0.39215686274509803, "blue": 0.19607843137254902}]})"
                  "\n");
  }
}

TEST_F(PaletteCommandTest, DrawsTheColoursBesideThePhoto) {
  for (const bool hasAlpha : {false, true}) {
    output(std::string("palette -q full -c 3 --png strip.png ") +
           (hasAlpha ? "alpha.png" : "opaque.png"));
    const auto picture = imageWithContentsOfFile(path("strip.png"));
    ASSERT_TRUE(picture && picture->cgImage());
    EXPECT_EQ(picture->size(), (Size{252 + 30, 120}));
    EXPECT_EQ(::FrameworkUtility::hasAlpha(*picture), hasAlpha);
    const CGImage& image = *picture->cgImage();
    using Color = std::array<int, 3>;
    const std::tuple<std::size_t, std::size_t, Color> places[] = {
        {0, 39, {200, 100, 50}},   {127, 39, {200, 100, 50}},  {251, 0, {250, 0, 250}},
        {252, 39, {200, 100, 50}}, {281, 39, {200, 100, 50}},  {252, 40, {0, 0, 0}},
        {252, 79, {0, 0, 0}},      {281, 80, {255, 255, 255}}, {281, 119, {255, 255, 255}}};
    for (const auto& [x, y, color] : places) {
      const std::byte* pixel = image.pixels().data() + y * image.layout().bytesPerRow +
                               x * image.layout().bitsPerPixel / 8;
      EXPECT_EQ((Color{std::to_integer<int>(pixel[0]), std::to_integer<int>(pixel[1]),
                       std::to_integer<int>(pixel[2])}),
                color)
          << x << ' ' << y;
    }
  }
}

TEST_F(PaletteCommandTest, ThePhotoStandsUprightAndNoLargerThanTheScreen) {
  write("large.png", testing::redAndBlue(2000, 100), "png", {{kCGImagePropertyOrientation, 6}});
  output("palette large.png --png strip.png");
  const auto picture = imageWithContentsOfFile(path("strip.png"));
  ASSERT_TRUE(picture);
  EXPECT_EQ(picture->size(), (Size{51 + 12, 1024}));
}

class GradientCommandTest : public testing::KvtoolTest {};

std::vector<std::uint8_t> pixelsOf(const CGImage& image) {
  const auto pixels = detail::rgbaPixels(image, detail::AlphaForm::straight);
  return {pixels->data(), pixels->data() + pixels->size()};
}

TEST_F(GradientCommandTest, DrawsEveryKind) {
  const std::vector<KvColor> colors = {{1, 128.0 / 255, 0}, {0, 64.0 / 255, 1}, {1, 1, 1}};
  const Size size{40, 30};
  KvGradient circle(colors, horizontal);
  circle.type = KvGradientType::radial;
  circle.startPointNormalized = {0.5, 0.5};
  struct Case {
    std::string arguments;
    std::optional<UIImage> expected;
  };
  const std::string list = " --colors '#FF8000,#0040ff,#FFFFFF'";
  for (const auto& [arguments, expected] : std::initializer_list<Case>{
           {"linear" + list, generateGradientImageOfSize(size, horizontal, colors)},
           {"linear --vertical" + list, generateGradientImageOfSize(size, vertical, colors)},
           {"radial" + list, generateGradientImageOfSize(size, 1, circle)},
           {"conical" + list, conicalGradientImageWithColors(colors, size, 1)},
           {"hue", generateHueGradientImageOfSize(size, horizontal)},
           {"lightness", generateSelectiveLightnessGradientImageOfSize(size, horizontal)},
           {"selective", selectiveHueGradientImageForType(SelectiveHsl::red, size, horizontal)},
           {"selective --vertical --colors '#2060F0'",
            selectiveHueGradientImageForType(SelectiveHsl::blue, size, vertical)},
           {"selective --colors '#FF0008'",  // just before the circle closes
            selectiveHueGradientImageForType(SelectiveHsl::red, size, horizontal)}}) {
    SCOPED_TRACE(arguments);
    EXPECT_EQ(output("gradient --size 40x30 --out a.png --kind " + arguments), "");
    const auto drawn = imageWithContentsOfFile(path("a.png"));
    ASSERT_TRUE(drawn);
    EXPECT_EQ(pixelsOf(*drawn->cgImage()), pixelsOf(*expected->cgImage()));
  }
}

}  // namespace
}  // namespace FrameworkUtility
