#include <framework_utility/platform/graphics/image_reducer.h>

#include <utility>

namespace FrameworkUtility::detail {

namespace {

enum class Step { none, premultiply, convert };

/// What becomes of rows before they are averaged: most codecs' lie as the scaler takes them.
Step stepFor(const CGImageLayout& layout, CGColorSpaceModel model) {
  if (layout.bitsPerComponent != 8 || layout.byteOrder == CGImageByteOrder::little32) {
    return Step::convert;
  }
  switch (layout.alphaInfo) {
    case CGImageAlphaInfo::none:
      return model == CGColorSpaceModel::monochrome || model == CGColorSpaceModel::cmyk
                 ? Step::none
                 : Step::convert;
    case CGImageAlphaInfo::premultipliedLast:
    case CGImageAlphaInfo::noneSkipLast:
      return model == CGColorSpaceModel::rgb ? Step::none : Step::convert;
    case CGImageAlphaInfo::last:
      return model == CGColorSpaceModel::rgb ? Step::premultiply : Step::convert;
    default:
      return Step::convert;
  }
}

std::size_t bytesPerPixel(const CGImageLayout& layout, Step step) {
  return step == Step::none ? layout.bitsPerPixel / 8 : 4;
}

CGImageLayout reducedLayout(const CGImageLayout& source, Step step, PixelSize target) {
  const std::size_t pixelBytes = bytesPerPixel(source, step);
  CGImageLayout layout;
  layout.width = target.width;
  layout.height = target.height;
  layout.bitsPerPixel = 8 * pixelBytes;
  layout.bytesPerRow = target.width * pixelBytes;
  layout.alphaInfo = step == Step::none               ? source.alphaInfo
                     : carriesAlpha(source.alphaInfo) ? CGImageAlphaInfo::premultipliedLast
                                                      : CGImageAlphaInfo::noneSkipLast;
  return layout;
}

}  // namespace

std::optional<ImageReducer> ImageReducer::create(const CGImageLayout& source,
                                                 const CGColorSpace& space, PixelSize target) {
  const Step step = stepFor(source, space.model());
  const CGImageLayout layout = reducedLayout(source, step, target);
  auto converter = RGBAConverter::create(source, space, AlphaForm::premultiplied);
  auto scaler = AreaScaler::create({source.width, source.height}, target, layout.bitsPerPixel / 8);
  auto pixels = PixelBuffer::allocate(layout.height, layout.bytesPerRow);
  if (!converter || !scaler || !pixels) return std::nullopt;

  // What was grey or ink is RGB once it is converted.
  const bool keepsSpace = step == Step::none || space.model() == CGColorSpaceModel::rgb;
  ImageReducer reducer(layout, keepsSpace ? space : CGColorSpace::createDeviceRGB(),
                       *std::move(scaler), *std::move(pixels));
  reducer.premultiplied_ = step == Step::premultiply ? source.width : 0;
  if (step == Step::convert) {
    reducer.row_ = PixelBuffer::allocate(1, 4 * source.width);
    if (!reducer.row_) return std::nullopt;
    reducer.converter_ = *converter;
  }
  return reducer;
}

std::uint64_t ImageReducer::memory(const CGImageLayout& source, const CGColorSpace& space,
                                   PixelSize target) {
  const Step step = stepFor(source, space.model());
  const std::size_t pixelBytes = bytesPerPixel(source, step);
  return std::uint64_t{target.height} * target.width * pixelBytes +
         (step == Step::convert ? 4 * source.width : 0) +
         AreaScaler::memory({source.width, source.height}, target, pixelBytes);
}

void ImageReducer::push(std::uint8_t* row) {
  if (isDone()) return;
  if (premultiplied_ > 0) premultiply(row, premultiplied_);
  if (converter_) converter_->convert(row, row_->data());
  if (scaler_.push(converter_ ? row_->data() : row, pixels_.row(done_))) ++done_;
}

std::optional<CGImage> ImageReducer::image() && {
  return CGImage::create(layout_, space_, std::move(pixels_).share());
}

}  // namespace FrameworkUtility::detail
