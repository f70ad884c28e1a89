#include <framework_utility/color/images/color_analysis.h>
#include <framework_utility/platform/imageio/image_source.h>
#include <framework_utility/platform/imageio/metadata/property_keys.h>
#include <framework_utility/platform/imageio/ui_image_coding.h>
#include <tests/imageio/pictures.h>
#include <tests/support/run_program.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace FrameworkUtility {
namespace {

using testing::encoded;
using ::testing::HasSubstr;
using testing::ProgramResult;
using testing::redAndBlue;

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

class PaletteCommandTest : public ::testing::Test {
 protected:
  PaletteCommandTest() {
    write("opaque.png", striped(CGImageAlphaInfo::noneSkipLast));
    write("alpha.png", striped(CGImageAlphaInfo::last));
  }

  void write(const std::string& name, const CGImage& image, const Dictionary& properties = {}) {
    testing::writeFile(folder_.path(name), encoded(image, "public.png", properties));
  }

  ProgramResult run(const std::string& arguments) const {
    return testing::runProgram("'" KVTOOL "' palette " + arguments, folder_.path());
  }

  const testing::TemporaryFolder folder_;
};

TEST_F(PaletteCommandTest, NamesTheColoursThatTheAnalysisFinds) {
  const ProgramResult all = run("opaque.png --quality full --count 0");
  EXPECT_EQ(all.exitCode, 0);
  EXPECT_EQ(all.problems, "");
  EXPECT_EQ(all.output,
            "#C86432  200 100  50\n#000000    0   0   0\n#FFFFFF  255 255 255\n"
            "#007800    0 120   0\n#0000C8    0   0 200\n#FA00FA  250   0 250\n");
  EXPECT_EQ(run("opaque.png --quality full --count 2").output, all.output.substr(0, 42));
  EXPECT_EQ(run("opaque.png --quality full").output, all.output.substr(0, 105)) << "five of them";

  for (const auto& [name, quality] : {std::pair{"low", UIImageAnalyzeColorQuality::low},
                                      {"medium", UIImageAnalyzeColorQuality::medium},
                                      {"high", UIImageAnalyzeColorQuality::high}}) {
    const auto found =
        analyzeImageAtUrl(URL::fileURLWithPath(folder_.path("opaque.png")), quality, 0);
    ASSERT_TRUE(found);
    std::string expected;
    for (const KvColor& color : found->colors) expected += color.hexString() + '\n';
    std::string hexadecimal;
    const std::string output = run(std::string("opaque.png --count 0 --quality ") + name).output;
    for (std::size_t line = 0; line < output.size(); line += 21) {
      hexadecimal += output.substr(line, 7) + '\n';
    }
    EXPECT_EQ(hexadecimal, expected) << name;
  }
}

TEST_F(PaletteCommandTest, JsonReadsBackAsTheVeryNumbers) {
  for (const char* name : {"opaque", "alpha"}) {
    const ProgramResult result =
        run("--json --quality full --count 1 " + std::string(name) + ".png");
    EXPECT_EQ(result.exitCode, 0);
    double red = 0, green = 0, blue = 0;
    int end = 0;
    const std::string format =
        "{\"file\": \"" + std::string(name) +
        ".png\", \"containsAlpha\": " + (name == std::string("alpha") ? "true" : "false") +
        R"(, "colors": [{"hex": "#C86432", "red": %lf, "green": %lf, "blue": %lf}]})"
        "\n%n";
    std::sscanf(result.output.c_str(), format.c_str(), &red, &green, &blue, &end);
    EXPECT_EQ(end, static_cast<int>(result.output.size())) << result.output;
    EXPECT_EQ(red, 200 / 255.0);
    EXPECT_EQ(green, 100 / 255.0);
    EXPECT_EQ(blue, 50 / 255.0);
  }
}

TEST_F(PaletteCommandTest, DrawsTheColoursBesideThePhoto) {
  for (const bool hasAlpha : {false, true}) {
    const ProgramResult result = run(std::string(hasAlpha ? "alpha" : "opaque") +
                                     ".png --quality full --count 3 --png strip.png");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.problems, "");
    const auto picture = imageWithContentsOfFile(folder_.path("strip.png"));
    ASSERT_TRUE(picture && picture->cgImage());
    EXPECT_EQ(picture->size(), (Size{252 + 30, 120}));
    EXPECT_EQ(::FrameworkUtility::hasAlpha(*picture), hasAlpha);
    const CGImage& image = *picture->cgImage();
    const auto colorAt = [&](std::size_t x, std::size_t y) {
      const std::byte* pixel = image.pixels().data() + y * image.layout().bytesPerRow +
                               x * image.layout().bitsPerPixel / 8;
      return std::array{std::to_integer<int>(pixel[0]), std::to_integer<int>(pixel[1]),
                        std::to_integer<int>(pixel[2])};
    };
    for (const std::size_t x :
         {std::size_t{0}, std::size_t{127}, std::size_t{252}, std::size_t{281}}) {
      EXPECT_EQ(colorAt(x, 39), (std::array{200, 100, 50})) << x;
    }
    EXPECT_EQ(colorAt(251, 0), (std::array{250, 0, 250}));
    for (const std::size_t y : {std::size_t{40}, std::size_t{79}}) {
      EXPECT_EQ(colorAt(252, y), (std::array{0, 0, 0})) << y;
    }
    for (const std::size_t y : {std::size_t{80}, std::size_t{119}}) {
      EXPECT_EQ(colorAt(281, y), (std::array{255, 255, 255})) << y;
    }
  }
}

TEST_F(PaletteCommandTest, ThePhotoStandsUprightAndNoLargerThanTheScreen) {
  write("large.png", redAndBlue(2000, 100), {{kCGImagePropertyOrientation, 6}});
  EXPECT_EQ(run("large.png --png strip.png").exitCode, 0);
  const auto picture = imageWithContentsOfFile(folder_.path("strip.png"));
  ASSERT_TRUE(picture);
  EXPECT_EQ(picture->size(), (Size{51 + 12, 1024}));
}

TEST_F(PaletteCommandTest, WhatCannotBeReadOrWrittenIsReported) {
  testing::writeFile(folder_.path("text.png"), Data(std::vector(9, std::byte{'a'})));
  for (const char* arguments :
       {"missing.jpg", "text.png --json", ". --png x.png", "opaque.png --png no/folder/x.png"}) {
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.exitCode, 1) << arguments;
    EXPECT_THAT(result.problems, HasSubstr("kvtool: ")) << arguments;
  }
  write("grey.png",
        *CGImage::create({.width = 1,
                          .height = 1,
                          .bitsPerPixel = 8,
                          .bytesPerRow = 1,
                          .alphaInfo = CGImageAlphaInfo::none},
                         CGColorSpace::createDeviceGray(), Data(std::vector(1, std::byte{9}))));
  EXPECT_THAT(run("grey.png").problems,
              HasSubstr("the image has no pixels in red, green and blue"));
}

}  // namespace
}  // namespace FrameworkUtility
