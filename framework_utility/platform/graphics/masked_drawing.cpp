#include <framework_utility/platform/graphics/masked_drawing.h>

#include <framework_utility/platform/graphics/area_scaler.h>
#include <framework_utility/platform/graphics/color_profile.h>
#include <framework_utility/platform/graphics/pixman_image.h>
#include <framework_utility/platform/graphics/rgba_rows.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

namespace FrameworkUtility::detail {

namespace {

/// The pixels of a bitmap under a box, as words. Where the caller's rows do not begin at words,
/// those are copied out, and back at the end.
class Target {
 public:
  Target(const DrawnBitmap& bitmap, const PixelBox& box) : bitmap_(bitmap), box_(box) {
    const PixelRows& rows = bitmap.rows;
    std::uint8_t* pixels = beginning(0);
    std::size_t bytesPerRow = rows.bytesPerRow;
    if (reinterpret_cast<std::uintptr_t>(pixels) % 4 != 0 || bytesPerRow % 4 != 0) {
      bytesPerRow = byteCount();
      copy_ = PixelBuffer::allocate(static_cast<std::size_t>(box.height()), bytesPerRow);
      if (!copy_) return;
      for (int y = 0; y < box.height(); ++y) {
        std::memcpy(copy_->row(static_cast<std::size_t>(y)), beginning(y), byteCount());
      }
      pixels = copy_->data();
    }
    image_.reset(pixman_image_create_bits_no_clear(
        bitmap.hasAlpha ? pixmanRGBA : pixmanRGBSkip, box.width(), box.height(),
        reinterpret_cast<std::uint32_t*>(pixels), static_cast<int>(bytesPerRow)));
  }
  Target(const Target&) = delete;
  Target& operator=(const Target&) = delete;
  ~Target() {
    for (int y = 0; copy_ && y < box_.height(); ++y) {
      std::memcpy(beginning(y), copy_->row(static_cast<std::size_t>(y)), byteCount());
    }
  }

  pixman_image_t* image() const { return image_.get(); }

 private:
  std::size_t byteCount() const { return 4 * static_cast<std::size_t>(box_.width()); }
  std::uint8_t* beginning(int y) const {
    return bitmap_.rows.row(static_cast<std::size_t>(box_.top) + static_cast<std::size_t>(y)) +
           4 * static_cast<std::size_t>(box_.left);
  }

  const DrawnBitmap& bitmap_;
  PixelBox box_;
  std::optional<PixelBuffer> copy_;
  PixmanImage image_;
};

/// `source` begins at the top left of the box that `where` has.
bool compose(const DrawnBitmap& bitmap, pixman_image_t* source, const Coverage& where) {
  const PixelBox& box = where.box();
  const Target target(bitmap, box);
  if (!source || !target.image()) return false;
  pixman_image_composite32(PIXMAN_OP_OVER, source, where.mask(), target.image(), 0, 0, 0, 0, 0, 0,
                           box.width(), box.height());
  return true;
}

/// The image stretched to `size`, neither side larger than its own, in 8-bit RGBA.
std::optional<PixelBuffer> reducedPixels(const CGImage& image, const PixelSize& size) {
  const PixelSize from{image.width(), image.height()};
  if (size == from) return rgbaPixels(image, AlphaForm::premultiplied);
  const std::optional<RGBARows> rows = RGBARows::of(image, AlphaForm::premultiplied);
  std::optional<AreaScaler> scaler = AreaScaler::create(from, size, 4);
  std::optional<PixelBuffer> row = PixelBuffer::allocate(from.width, 4);
  std::optional<PixelBuffer> pixels = PixelBuffer::allocate(size.height, size.width * 4);
  if (!rows || !scaler || !row || !pixels) return std::nullopt;
  std::size_t done = 0;
  for (std::size_t y = 0; y < from.height; ++y) {
    rows->read(y, row->data());
    if (scaler->push(row->data(), pixels->row(done))) ++done;
  }
  return pixels;
}

/// What `space` means by 8-bit RGBA, brought into sRGB.
bool bringIntoSRGB(PixelBuffer& pixels, bool hasAlpha, const CGColorSpace& space) {
  if (space == CGColorSpace::createDeviceRGB()) return true;
  const std::size_t count = pixels.size() / 4;
  if (hasAlpha) unpremultiply(pixels.data(), count);
  if (!convertToSRGB(*space.iccData(), pixels.data(), count)) return false;
  if (hasAlpha) premultiply(pixels.data(), count);
  return true;
}

/// As many pixels as `length` of them take up on the bitmap, and no more than there are.
std::size_t reducedSide(std::size_t length, double scale) {
  const double wanted = std::round(static_cast<double>(length) * scale);
  if (!(wanted < static_cast<double>(length))) return length;
  return static_cast<std::size_t>(std::max(wanted, 1.0));
}

/// From the box's pixels back to the source's; absent where there is no inverse or it does not fit.
std::optional<pixman_transform_t> inverseOf(const AffineTransform& toPixels, const PixelBox& box) {
  pixman_f_transform_t there{{{toPixels.a, toPixels.c, toPixels.tx - box.left},
                              {toPixels.b, toPixels.d, toPixels.ty - box.top},
                              {0, 0, 1}}};
  pixman_f_transform_t back;
  pixman_transform_t fixed;
  if (!pixman_f_transform_invert(&back, &there) ||
      !pixman_transform_from_pixman_f_transform(&fixed, &back)) {
    return std::nullopt;
  }
  return fixed;
}

}  // namespace

bool drawColor(const DrawnBitmap& bitmap, const RGBA& color, const Coverage& where) {
  const auto unit = [](double value) { return value > 0 ? std::min(value, 1.0) : 0; };
  const auto component = [&](double value) {
    return static_cast<std::uint16_t>(std::lround(unit(value) * unit(color.alpha) * 65535));
  };
  const pixman_color_t premultiplied{component(color.red), component(color.green),
                                     component(color.blue), component(1)};
  return compose(bitmap, PixmanImage(pixman_image_create_solid_fill(&premultiplied)).get(), where);
}

bool drawGradient(const DrawnBitmap& bitmap, const GradientFill& fill, const Coverage& where) {
  const PixelBox& box = where.box();
  std::optional<PixelBuffer> colors = PixelBuffer::allocate(
      static_cast<std::size_t>(box.height()), 4 * static_cast<std::size_t>(box.width()));
  std::vector<std::uint8_t> row(4 * static_cast<std::size_t>(box.right));
  if (!colors) return false;
  for (int y = 0; y < box.height(); ++y) {
    fill.fillRow(static_cast<std::size_t>(box.top) + static_cast<std::size_t>(y), row.data(),
                 static_cast<std::size_t>(box.right));
    std::memcpy(colors->row(static_cast<std::size_t>(y)),
                row.data() + 4 * static_cast<std::size_t>(box.left), colors->bytesPerRow());
  }
  const PixmanImage source(pixman_image_create_bits_no_clear(
      pixmanRGBA, box.width(), box.height(), reinterpret_cast<std::uint32_t*>(colors->data()),
      static_cast<int>(colors->bytesPerRow())));
  return compose(bitmap, source.get(), where);
}

bool drawImage(const DrawnBitmap& bitmap, const CGImage& image, const AffineTransform& toPixels,
               const Coverage& where) {
  const std::optional<CGColorSpace>& space = image.colorSpace();
  if (!space || space->model() == CGColorSpaceModel::lab) return true;
  const double across = std::hypot(toPixels.a, toPixels.b) * static_cast<double>(image.width());
  const double down = std::hypot(toPixels.c, toPixels.d) * static_cast<double>(image.height());
  const double area = std::abs(toPixels.a * toPixels.d - toPixels.b * toPixels.c) *
                      static_cast<double>(image.width()) * static_cast<double>(image.height());
  constexpr double thinnest = 0.001;  // of a pixel: covers less than half a level of it
  if (!(area > thinnest * std::max(across, down))) return true;
  const PixelSize size{reducedSide(image.width(), std::hypot(toPixels.a, toPixels.b)),
                       reducedSide(image.height(), std::hypot(toPixels.c, toPixels.d))};
  if (std::max(size.width, size.height) > pixmanLongestSide) return false;
  std::optional<PixelBuffer> pixels = reducedPixels(image, size);
  if (!pixels) return false;
  const bool hasAlpha = carriesAlpha(image.alphaInfo());
  // Grey and CMYK have become RGB by now.
  if (space->model() == CGColorSpaceModel::rgb && !bringIntoSRGB(*pixels, hasAlpha, *space)) {
    return false;
  }

  const double x = static_cast<double>(image.width()) / static_cast<double>(size.width);
  const double y = static_cast<double>(image.height()) / static_cast<double>(size.height);
  const std::optional<pixman_transform_t> back = inverseOf(
      {toPixels.a * x, toPixels.b * x, toPixels.c * y, toPixels.d * y, toPixels.tx, toPixels.ty},
      where.box());
  const PixmanImage source(pixman_image_create_bits_no_clear(
      hasAlpha ? pixmanRGBA : pixmanRGBSkip, static_cast<int>(size.width),
      static_cast<int>(size.height), reinterpret_cast<std::uint32_t*>(pixels->data()),
      static_cast<int>(pixels->bytesPerRow())));
  if (!back || !source || !pixman_image_set_transform(source.get(), &*back) ||
      !pixman_image_set_filter(source.get(), PIXMAN_FILTER_BILINEAR, nullptr, 0)) {
    return false;
  }
  // The edge is soft by what covers it, not by what lies beyond the image.
  pixman_image_set_repeat(source.get(), PIXMAN_REPEAT_PAD);
  return compose(bitmap, source.get(), where);
}

}  // namespace FrameworkUtility::detail
