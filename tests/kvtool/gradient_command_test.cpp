#include <framework_utility/color/images/gradient_image.h>
#include <framework_utility/platform/graphics/rgba_rows.h>
#include <framework_utility/platform/imageio/image_source.h>
#include <tests/kvtool/kvtool_test.h>

#include <cstdint>
#include <vector>

namespace FrameworkUtility {
namespace {

using enum GradientDirection;

class GradientCommandTest : public testing::KvtoolTest {
 protected:
  std::optional<CGImageSource> source(const std::string& name) const {
    return CGImageSource::createWithURL(URL::fileURLWithPath(path(name)));
  }
};

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
           {"hue --vertical", generateHueGradientImageOfSize(size, vertical)},
           {"lightness", generateSelectiveLightnessGradientImageOfSize(size, horizontal)},
           {"selective", selectiveHueGradientImageForType(SelectiveHsl::red, size, horizontal)},
           {"selective --vertical --colors '#2060F0'",
            selectiveHueGradientImageForType(SelectiveHsl::blue, size, vertical)},
           {"selective --colors '#FF0008'",  // just before the circle closes
            selectiveHueGradientImageForType(SelectiveHsl::red, size, horizontal)}}) {
    SCOPED_TRACE(arguments);
    EXPECT_EQ(output("gradient --size 40x30 --out a.png --kind " + arguments), "");
    ASSERT_TRUE(source("a.png"));
    EXPECT_EQ(pixelsOf(*source("a.png")->imageAtIndex(0)), pixelsOf(*expected->cgImage()));
  }
}

TEST_F(GradientCommandTest, TheExtensionChoosesTheFormat) {
  for (const auto& [name, type] :
       {std::pair{"a.jpg", "public.jpeg"}, {"a.PNG", "public.png"}, {"a", "public.png"}}) {
    EXPECT_EQ(output(std::string("gradient --kind hue --size 7x5 --out ") + name), "");
    ASSERT_TRUE(source(name));
    EXPECT_EQ(source(name)->type(), type);
    EXPECT_EQ(source(name)->imageAtIndex(0)->width(), 7U);
  }
}

}  // namespace
}  // namespace FrameworkUtility
