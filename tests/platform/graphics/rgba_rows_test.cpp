#include <framework_utility/platform/graphics/rgba_rows.h>

#include <tests/platform/graphics/pictures.h>

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace FrameworkUtility::detail {
namespace {

using enum CGImageAlphaInfo;

/// A pixel by definition, from components in 0...1 to the same.
std::array<double, 4> expectedPixel(std::vector<double> components, CGImageAlphaInfo info,
                                    AlphaForm form) {
  double alpha = 1;
  const bool isFirst = info == premultipliedFirst || info == first || info == noneSkipFirst;
  if (info != none) {
    alpha = isFirst ? components.front() : components.back();
    components.erase(isFirst ? components.begin() : components.end() - 1);
    if (info == noneSkipFirst || info == noneSkipLast) alpha = 1;
  }
  std::array<double, 4> pixel{0, 0, 0, alpha};
  for (std::size_t c = 0; c < 3 && !components.empty(); ++c) {
    pixel[c] = components.size() == 4 ? (1 - components[c]) * (1 - components[3])
                                      : components[components.size() == 1 ? 0 : c];
    const bool isMultiplied = info == premultipliedFirst || info == premultipliedLast;
    if (isMultiplied && form == AlphaForm::straight) {
      pixel[c] = alpha == 0 ? 0 : std::min(pixel[c] / alpha, 1.0);
    } else if (!isMultiplied && form == AlphaForm::premultiplied) {
      pixel[c] *= alpha;
    }
  }
  return pixel;
}

TEST(RGBARowsTest, ReadsEveryLayout) {
  using Order = CGImageByteOrder;
  constexpr std::size_t width = 37;
  int layouts = 0;
  for (const CGImage& image : testing::imagesInEveryLayout(width, 3)) {
    const auto& [w, h, bits, bitsPerPixel, bytesPerRow, info, order] = image.layout();
    const std::size_t components = bitsPerPixel / bits;
    if (components == 5 && carriesAlpha(info)) continue;  // CMYK and alpha: no definition
    ++layouts;
    const auto bytes = testing::bytesOf(image.pixels());
    for (const AlphaForm form : {AlphaForm::straight, AlphaForm::premultiplied}) {
      SCOPED_TRACE(::testing::Message() << components << " components of " << bits
                                        << " bits, alpha " << static_cast<std::uint32_t>(info)
                                        << ", order " << static_cast<std::uint32_t>(order));
      const auto rows = RGBARows::of(image, form);
      ASSERT_TRUE(rows);
      std::array<std::uint8_t, width * 4> narrow{};
      std::array<std::uint16_t, width * 4> wide{};
      rows->read(1, narrow.data());
      rows->read(1, wide.data());
      for (std::size_t x = 0; x < width; ++x) {
        std::vector<double> pixel(components);
        for (std::size_t c = 0; c < components; ++c) {
          const std::size_t at = bytesPerRow + (x * components + c) * bits / 8;
          const std::size_t low = order == Order::little16 ? at : at + 1;
          const std::size_t place = order == Order::little32 ? at - c + 3 - c : at;
          pixel[c] = bits == 8 ? bytes[place] / 255.0
                               : (bytes[2 * at + 1 - low] * 256 + bytes[low]) / 65535.0;
        }
        const auto expected = expectedPixel(pixel, info, form);
        for (std::size_t c = 0; c < 4; ++c) {
          // Rounded once in 16 bits; 8-bit results of 16 bits are rounded before alpha.
          const bool isDivided = form == AlphaForm::straight && c < 3 && expected[3] > 0;
          const double error = isDivided ? 1 + 1 / expected[3] : 1.5;
          EXPECT_NEAR(narrow[4 * x + c], expected[c] * 255, bits == 8 ? 0.501 : error);
          EXPECT_NEAR(wide[4 * x + c], expected[c] * 65535, 0.501);
        }
      }
    }
  }
  EXPECT_EQ(layouts, 94);
}

template <class Component>
void expectExactAlpha(std::uint32_t step) {
  constexpr std::uint32_t max = std::numeric_limits<Component>::max();
  for (std::uint32_t alpha = 0; alpha <= max; alpha += step) {
    for (std::uint32_t v = 0; v <= max; v += step) {
      std::array<Component, 4> pixel{static_cast<Component>(v), 0, static_cast<Component>(max),
                                     static_cast<Component>(alpha)};
      premultiply(pixel.data(), 1);
      const std::uint64_t product = std::uint64_t{v} * alpha;
      ASSERT_EQ(pixel[0], (2 * product + max) / (2 * max)) << v << ' ' << alpha;
      ASSERT_EQ(pixel[2], alpha);
      pixel[0] = static_cast<Component>(v);
      unpremultiply(pixel.data(), 1);
      const std::uint64_t quotient =
          alpha == 0 ? 0 : (2 * std::uint64_t{std::min(v, alpha)} * max + alpha) / (2 * alpha);
      ASSERT_EQ(pixel[0], quotient) << v << ' ' << alpha;
    }
  }
}

TEST(RGBARowsTest, AlphaIsExactInBothDirections) {
  expectExactAlpha<std::uint8_t>(1);
  expectExactAlpha<std::uint16_t>(51);
}

}  // namespace
}  // namespace FrameworkUtility::detail
