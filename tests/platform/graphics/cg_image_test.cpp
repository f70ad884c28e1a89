#include <framework_utility/platform/graphics/cg_image.h>
#include <framework_utility/platform/graphics/image_transform.h>
#include <framework_utility/platform/graphics/pixel_buffer.h>
#include <framework_utility/platform/graphics/ui_image.h>

#include <tests/platform/graphics/pictures.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

namespace FrameworkUtility {
namespace {

using namespace testing;
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
  const CGImageLayout rgba = layoutOf(2, 3, 4, last);
  const Data pixels = dataOf(noise(2 * 3 * 8));
  for (const auto& [space, layout] : {std::pair{rgb, rgba}, {gray, layoutOf(2, 3, 1, alphaOnly)}}) {
    const auto image = CGImage::create(layout, space, pixels);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->layout(), layout);
    EXPECT_EQ(image->pixels().data(), pixels.data());  // shared
    EXPECT_EQ(image->colorSpace().has_value(), layout.alphaInfo != alphaOnly);
  }
  using L = CGImageLayout;
  using Order = CGImageByteOrder;
  for (const auto& [what, space, layout] : {
           std::tuple{"pixels that are too few", rgb, changed(rgba, &L::bytesPerRow, 17)},
           {"no width", rgb, changed(rgba, &L::width, 0)},
           {"no height", rgb, changed(rgba, &L::height, 0)},
           {"RGB without a third component", rgb, layoutOf(2, 3, 2, none)},
           {"RGB in a grey space", gray, layoutOf(2, 3, 3, none)},
           {"four components of which none is skipped", rgb, layoutOf(2, 3, 4, none)},
           {"12 bits a component", rgb, layoutOf(2, 3, 4, last, 12)},
           {"short rows", rgb, changed(rgba, &L::bytesPerRow, 7)},
           {"32-bit order of 16-bit components", rgb, layoutOf(2, 3, 4, last, 16, Order::little32)},
           {"16-bit order of 8-bit components", rgb, layoutOf(2, 3, 4, last, 8, Order::big16)},
           {"32-bit order of 24-bit pixels", rgb, layoutOf(2, 3, 3, none, 8, Order::big32)},
           {"no such order", rgb, changed(rgba, &L::byteOrder, Order{0x5000})},
           {"no such alpha", rgb, changed(rgba, &L::alphaInfo, CGImageAlphaInfo{8})},
           {"width that overflows", rgb, changed(rgba, &L::width, huge / 2)},
           {"height that overflows", rgb, changed(rgba, &L::height, huge / 8 + 1)},
           {"row that overflows", rgb, changed(rgba, &L::bytesPerRow, huge)},
       }) {
    EXPECT_FALSE(CGImage::create(layout, space, pixels)) << what;
  }
}

TEST(UprightImageTest, MovesEveryPixelWhereItsOrientationSays) {
  constexpr std::size_t w = 37, h = 71;
  for (const CGImage& image : imagesInEveryLayout(w, h)) {
    const auto stored = bytesOf(image.pixels());
    const std::size_t size = image.layout().bitsPerPixel / 8;
    for (const std::size_t orientation : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U}) {
      SCOPED_TRACE(::testing::Message() << size << " bytes, orientation " << orientation);
      // EXIF says where row 0 and column 0 are: 6 has its row 0 at the right and its column 0 at
      // the top.
      const bool isLying = orientation >= 5 && orientation <= 8;
      const bool isMirrored = orientation % 4 == 2 || orientation % 4 == 3;
      const bool isUpsideDown = orientation > 1 && (orientation % 4 == 3 || orientation % 4 == 0);
      const auto upright = detail::uprightImage(image, orientation);
      ASSERT_TRUE(upright);
      ASSERT_EQ(upright->width(), isLying ? h : w);
      ASSERT_EQ(upright->height(), isLying ? w : h);
      EXPECT_EQ(upright->alphaInfo(), image.alphaInfo());
      EXPECT_EQ(upright->colorSpace(), image.colorSpace());
      const auto moved = bytesOf(upright->pixels());
      for (std::size_t y = 0; y < h; ++y) {
        for (std::size_t x = 0; x < w; ++x) {
          const std::size_t right = isLying ? y : x, down = isLying ? x : y;
          const std::size_t toX = isMirrored ? upright->width() - 1 - right : right;
          const std::size_t toY = isUpsideDown ? upright->height() - 1 - down : down;
          ASSERT_TRUE(std::equal(&moved[toY * upright->layout().bytesPerRow + toX * size],
                                 &moved[toY * upright->layout().bytesPerRow + toX * size] + size,
                                 &stored[y * image.layout().bytesPerRow + x * size]));
        }
      }
    }
  }
}

TEST(UIImageTest, SizeIsInPointsAndTurned) {
  const CGImage bitmap = *CGImage::create(layoutOf(6, 3, 1, none), CGColorSpace::createDeviceGray(),
                                          dataOf(noise(18)));
  for (const auto& [scale, used] :
       {std::pair{1.0, 1}, {3.0, 3}, {0.0, 1}, {-2.0, 1}, {std::nan(""), 1}}) {
    EXPECT_EQ(UIImage(bitmap, scale).scale(), used);
    EXPECT_EQ(UIImage(bitmap, scale).size(), (Size{6.0 / used, 3.0 / used}));
  }
  for (const std::int64_t orientation : {0, 1, 2, 3, 4, 5, 6, 7}) {
    const UIImage image(bitmap, 1.5, UIImageOrientation{orientation});
    const bool lying = orientation == 2 || orientation == 3 || orientation >= 6;
    EXPECT_EQ(image.size(), lying ? (Size{2, 4}) : (Size{4, 2})) << orientation;
    EXPECT_EQ(image.cgImage()->width(), 6U);
  }
  const UIImage drawn = UIImage::withoutBitmap({7, 8}, 2);
  EXPECT_FALSE(drawn.cgImage());
  EXPECT_EQ(drawn.size(), (Size{7, 8}));
}

TEST(PixelBufferTest, ChecksSizesAndHandsBytesOver) {
  using detail::PixelBuffer;
  for (const auto& [rows, bytes] : {std::pair<std::size_t, std::size_t>{0, 4},
                                    {4, 0},
                                    {huge, huge},
                                    {detail::maximumPixelBytes / 4 + 1, 4}}) {
    EXPECT_FALSE(PixelBuffer::allocate(rows, bytes)) << rows << ' ' << bytes;
  }
  for (const std::size_t rows : {1U, 3U, 100'000U}) {
    PixelBuffer buffer = PixelBuffer::allocate(rows, 100).value();
    const std::uint8_t* bytes = buffer.data();
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bytes) % 64, 0U);
    buffer.row(rows - 1)[99] = 77;
    const Data data = std::move(buffer).share();
    EXPECT_EQ(data.data(), reinterpret_cast<const std::byte*>(bytes));
    EXPECT_EQ(bytesOf(data).at(rows * 100 - 1), 77);
  }
}

}  // namespace
}  // namespace FrameworkUtility
