#include <framework_utility/platform/graphics/cg_image.h>
#include <framework_utility/platform/graphics/pixel_buffer.h>
#include <framework_utility/platform/graphics/ui_image.h>

#include <tests/platform/graphics/pictures.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

namespace FrameworkUtility {
namespace {

using testing::dataOf;
using testing::layoutOf;
using testing::noise;
using enum CGImageAlphaInfo;

constexpr std::size_t huge = std::numeric_limits<std::size_t>::max();

// Of a temporary, nothing refers to it.
static_assert(!std::is_reference_v<decltype(std::declval<CGImage>().layout())>);
static_assert(!std::is_reference_v<decltype(std::declval<CGImage>().colorSpace())>);
static_assert(!std::is_reference_v<decltype(std::declval<CGImage>().pixels())>);
static_assert(!std::is_reference_v<decltype(std::declval<UIImage>().cgImage())>);

TEST(CGImageTest, TakesLayoutsThatAgreeWithThemselvesAndTheSpace) {
  const CGColorSpace rgb = CGColorSpace::createDeviceRGB();
  const CGColorSpace gray = CGColorSpace::createDeviceGray();
  const Data pixels = dataOf(noise(2 * 3 * 8));
  struct Case {
    const char* what;
    CGColorSpace space;
    bool fits;
    CGImageLayout layout;
  };
  const auto changed = [](CGImageLayout layout, auto member, auto value) {
    layout.*member = static_cast<std::remove_reference_t<decltype(layout.*member)>>(value);
    return layout;
  };
  const CGImageLayout rgba = layoutOf(2, 3, 4, last);
  using L = CGImageLayout;
  using Order = CGImageByteOrder;
  for (const Case& c : {
           Case{"RGBA", rgb, true, rgba},
           {"RGB", rgb, true, layoutOf(2, 3, 3, none)},
           {"RGBX", rgb, true, layoutOf(2, 3, 4, noneSkipFirst)},
           {"BGRA", rgb, true, layoutOf(2, 3, 4, premultipliedFirst, 8, Order::little32)},
           {"RGBA 16", rgb, true, layoutOf(2, 3, 4, last, 16, Order::little16)},
           {"grey", gray, true, layoutOf(2, 3, 1, none)},
           {"grey and alpha 16", gray, true, layoutOf(2, 3, 2, last, 16)},
           {"mask", rgb, true, layoutOf(2, 3, 1, alphaOnly)},
           {"padded rows", rgb, true, changed(rgba, &L::bytesPerRow, 16)},
           {"pixels that are too few", rgb, false, changed(rgba, &L::bytesPerRow, 17)},
           {"no width", rgb, false, changed(rgba, &L::width, 0)},
           {"no height", rgb, false, changed(rgba, &L::height, 0)},
           {"RGB without a third component", rgb, false, layoutOf(2, 3, 2, none)},
           {"RGB in a grey space", gray, false, layoutOf(2, 3, 3, none)},
           {"four components of which none is skipped", rgb, false, layoutOf(2, 3, 4, none)},
           {"12 bits a component", rgb, false, layoutOf(2, 3, 4, last, 12)},
           {"short rows", rgb, false, changed(rgba, &L::bytesPerRow, 7)},
           {"32-bit order of 16-bit components", rgb, false,
            layoutOf(2, 3, 4, last, 16, Order::little32)},
           {"16-bit order of 8-bit components", rgb, false,
            layoutOf(2, 3, 4, last, 8, Order::big16)},
           {"32-bit order of 24-bit pixels", rgb, false, layoutOf(2, 3, 3, none, 8, Order::big32)},
           {"no such order", rgb, false, changed(rgba, &L::byteOrder, Order{0x5000})},
           {"no such alpha", rgb, false, changed(rgba, &L::alphaInfo, CGImageAlphaInfo{8})},
           {"width that overflows", rgb, false, changed(rgba, &L::width, huge / 2)},
           {"height that overflows", rgb, false, changed(rgba, &L::height, huge / 8 + 1)},
           {"row that overflows", rgb, false, changed(rgba, &L::bytesPerRow, huge)},
       }) {
    SCOPED_TRACE(c.what);
    const auto image = CGImage::create(c.layout, c.space, pixels);
    ASSERT_EQ(image.has_value(), c.fits);
    if (!image) continue;
    EXPECT_EQ(image->layout(), c.layout);
    EXPECT_EQ(image->pixels().data(), pixels.data());  // shared
    EXPECT_EQ(image->colorSpace().has_value(), c.layout.alphaInfo != alphaOnly);
  }
}

TEST(UIImageTest, SizeIsInPointsAndTurned) {
  const auto bitmap =
      CGImage::create(layoutOf(6, 3, 1, none), CGColorSpace::createDeviceGray(), dataOf(noise(18)));
  ASSERT_TRUE(bitmap);
  EXPECT_EQ(UIImage(*bitmap).size(), (Size{6, 3}));
  EXPECT_EQ(UIImage(*bitmap, 3).size(), (Size{2, 1}));
  EXPECT_EQ(UIImage(*bitmap, 0).scale(), 1);
  EXPECT_EQ(UIImage(*bitmap, std::nan("")).size(), (Size{6, 3}));
  for (const std::int64_t orientation : {0, 1, 2, 3, 4, 5, 6, 7}) {
    SCOPED_TRACE(orientation);
    const UIImage image(*bitmap, 1.5, UIImageOrientation{orientation});
    const bool lying = orientation == 2 || orientation == 3 || orientation >= 6;
    EXPECT_EQ(image.size(), lying ? (Size{2, 4}) : (Size{4, 2}));
    EXPECT_EQ(image.cgImage()->width(), 6U);
  }
  const UIImage drawn = UIImage::withoutBitmap({7, 8}, 2);
  EXPECT_FALSE(drawn.cgImage());
  EXPECT_EQ(drawn.size(), (Size{7, 8}));
}

TEST(PixelBufferTest, ChecksSizesAndHandsBytesOver) {
  using detail::PixelBuffer;
  EXPECT_FALSE(PixelBuffer::allocate(0, 4));
  EXPECT_FALSE(PixelBuffer::allocate(4, 0));
  EXPECT_FALSE(PixelBuffer::allocate(std::size_t{1} << 40, std::size_t{1} << 40));
  EXPECT_FALSE(PixelBuffer::allocate(detail::maximumPixelBytes / 4 + 1, 4));
  for (const std::size_t rows : {std::size_t{1}, std::size_t{3}, std::size_t{100'000}}) {
    SCOPED_TRACE(rows);
    auto buffer = PixelBuffer::allocate(rows, 100);
    ASSERT_TRUE(buffer);
    const std::uint8_t* bytes = buffer->data();
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bytes) % 64, 0U);
    buffer->row(rows - 1)[99] = 77;
    const Data data = std::move(*buffer).share();
    EXPECT_EQ(data.size(), rows * 100);
    EXPECT_EQ(data.data(), reinterpret_cast<const std::byte*>(bytes));
    EXPECT_EQ(data.end()[-1], std::byte{77});
  }
}

}  // namespace
}  // namespace FrameworkUtility
