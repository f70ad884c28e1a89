#include <framework_utility/platform/graphics/drawn_rows.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace FrameworkUtility::detail {

namespace {

constexpr std::size_t components = 4;

/// Rows or columns of the picture, and how much of each a pixel of the bitmap shows, in parts of
/// that pixel. Where the picture covers it all, the weights add up to 1.
struct Span {
  std::size_t first = 0;
  std::size_t end = 0;
  double firstWeight = 0;
  double weight = 0;  // of those between the first and the last
  double lastWeight = 0;

  double weightOf(std::size_t i) const {
    return i == first ? firstWeight : i + 1 == end ? lastWeight : weight;
  }
};

/// What lies from `begin` to `end`, in parts of the way from 0 to `length`, of a picture of `count`
/// rows or columns.
Span spanOf(double begin, double end, double length, std::size_t count) {
  const double step = length / static_cast<double>(count);
  const double most = static_cast<double>(count);
  const double from = std::clamp(begin / step, 0.0, most);
  const double to = std::clamp(end / step, 0.0, most);
  Span span;
  if (from >= to) return span;
  const double first = std::floor(from);
  const double last = std::ceil(to) - 1;
  span.first = static_cast<std::size_t>(first);
  span.end = static_cast<std::size_t>(last) + 1;
  span.weight = step;
  span.firstWeight = (std::min(first + 1, to) - from) * step;
  span.lastWeight = (to - last) * step;
  return span;
}

bool isRGBAInMemory(const CGImageLayout& layout) {
  return layout.bitsPerComponent == 8 && layout.bitsPerPixel == 32 &&
         layout.byteOrder != CGImageByteOrder::little32 &&
         (layout.alphaInfo == CGImageAlphaInfo::premultipliedLast ||
          layout.alphaInfo == CGImageAlphaInfo::noneSkipLast);
}

}  // namespace

std::optional<DrawnRows> DrawnRows::create(const CGImage& image, PixelSize bitmap, Size area) {
  if (!image.colorSpace() || image.colorSpace()->model() != CGColorSpaceModel::rgb ||
      bitmap.width == 0 || bitmap.height == 0 || !(area.width >= 1) || !(area.height >= 1)) {
    return std::nullopt;
  }
  const std::optional<RGBARows> rows = RGBARows::of(image, AlphaForm::premultiplied);
  if (!rows) return std::nullopt;
  DrawnRows drawn(image, *rows, bitmap, area);
  drawn.isCopy_ = bitmap == PixelSize{image.width(), image.height()} &&
                  area.width == static_cast<double>(image.width()) &&
                  area.height == static_cast<double>(image.height());
  drawn.isInPlace_ = drawn.isCopy_ && isRGBAInMemory(image.layout());
  if (drawn.isInPlace_) return drawn;
  drawn.source_ = PixelBuffer::allocate(image.width(), components);
  if (!drawn.source_) return std::nullopt;
  if (drawn.isCopy_) return drawn;
  drawn.sums_ = PixelBuffer::allocate(image.width(), components * sizeof(double));
  drawn.drawn_ = PixelBuffer::allocate(bitmap.width, components);
  if (!drawn.sums_ || !drawn.drawn_) return std::nullopt;
  return drawn;
}

DrawnRows::Row DrawnRows::row(std::size_t y) {
  if (isInPlace_) {
    const auto* pixels = reinterpret_cast<const std::uint8_t*>(image_.pixels().data());
    return {pixels + y * image_.layout().bytesPerRow,
            image_.alphaInfo() == CGImageAlphaInfo::noneSkipLast};
  }
  if (isCopy_) return {sourceRow(y), false};
  sumRows(y);
  averageColumns();
  return {drawn_->data(), false};
}

const std::uint8_t* DrawnRows::sourceRow(std::size_t y) {
  if (sourceY_ != y) rows_.read(y, source_->data());
  sourceY_ = y;
  return source_->data();
}

void DrawnRows::sumRows(std::size_t y) {
  const std::size_t length = image_.width() * components;
  auto* __restrict sums = reinterpret_cast<double*>(sums_->data());
  std::fill_n(sums, length, 0.0);
  // The bitmap's top is above the picture's, or below it where that is cut off.
  const double top = area_.height - static_cast<double>(bitmap_.height) + static_cast<double>(y);
  const Span span = spanOf(top, top + 1, area_.height, image_.height());
  for (std::size_t i = span.first; i < span.end; ++i) {
    const double weight = span.weightOf(i);
    const std::uint8_t* __restrict row = sourceRow(i);
    for (std::size_t k = 0; k < length; ++k) sums[k] += weight * row[k];
  }
}

void DrawnRows::averageColumns() {
  const auto* sums = reinterpret_cast<const double*>(sums_->data());
  std::uint8_t* pixel = drawn_->data();
  for (std::size_t x = 0; x < bitmap_.width; ++x) {
    const auto left = static_cast<double>(x);
    const Span span = spanOf(left, left + 1, area_.width, image_.width());
    std::array<double, components> sum{};
    for (std::size_t i = span.first; i < span.end; ++i) {
      const double weight = span.weightOf(i);
      for (std::size_t c = 0; c < components; ++c) sum[c] += weight * sums[i * components + c];
    }
    for (const double component : sum) *pixel++ = static_cast<std::uint8_t>(std::lround(component));
  }
}

}  // namespace FrameworkUtility::detail
