#include <framework_utility/platform/imageio/png/png_decode.h>

#include <framework_utility/platform/graphics/area_scaler.h>
#include <framework_utility/platform/graphics/image_transform.h>
#include <framework_utility/platform/graphics/pixel_buffer.h>
#include <framework_utility/platform/graphics/rgba_rows.h>
#include <framework_utility/platform/imageio/png/png_reader.h>

#include <utility>

namespace FrameworkUtility::detail {

namespace {

/// The profile's space where it has as many components, else the plain one.
CGColorSpace spaceFor(const Data& profile, std::size_t colors) {
  if (!profile.empty()) {
    const std::optional<CGColorSpace> space = CGColorSpace::createWithICCData(profile);
    if (space && space->numberOfComponents() == colors) return *space;
  }
  return colors == 1 ? CGColorSpace::createDeviceGray() : CGColorSpace::createDeviceRGB();
}

std::optional<CGImage> makeImage(PixelBuffer pixels, const PixelSize& size, const PngReader& reader,
                                 CGImageAlphaInfo alpha, const Data& profile) {
  const bool isGray = reader.components() < 3;
  CGImageLayout layout;
  layout.width = size.width;
  layout.height = size.height;
  layout.bitsPerComponent = reader.bitsPerComponent();
  layout.bitsPerPixel = reader.bitsPerComponent() * reader.components();
  layout.bytesPerRow = pixels.bytesPerRow();
  layout.alphaInfo = reader.hasAlpha() ? alpha
                     : isGray          ? CGImageAlphaInfo::none
                                       : CGImageAlphaInfo::noneSkipLast;
  return CGImage::create(layout, spaceFor(profile, isGray ? 1 : 3), std::move(pixels).share());
}

std::optional<CGImage> decodeReduced(PngReader& reader, const PixelSize& target,
                                     const Data& profile) {
  const PixelSize size{reader.width(), reader.height()};
  const std::size_t components = reader.components();
  std::optional<AreaScaler> scaler = AreaScaler::create(size, target, components);
  std::optional<PixelBuffer> row = PixelBuffer::allocate(1, reader.bytesPerRow());
  std::optional<PixelBuffer> pixels =
      PixelBuffer::allocate(target.height, target.width * components);
  if (!scaler || !row || !pixels) return std::nullopt;
  std::size_t done = 0;
  for (std::size_t y = 0; y < size.height && done < target.height; ++y) {
    if (!reader.readRow(row->data())) return std::nullopt;
    if (reader.hasAlpha()) premultiply(row->data(), size.width);
    if (scaler->push(row->data(), pixels->row(done))) ++done;
  }
  return makeImage(*std::move(pixels), target, reader, CGImageAlphaInfo::premultipliedLast,
                   profile);
}

}  // namespace

std::optional<CGImage> decodePng(const ByteSource& source, const ImageHeader& header) {
  PngReader reader(source);
  if (!reader.start(PngForm::whole)) return std::nullopt;
  std::optional<PixelBuffer> pixels = PixelBuffer::allocate(reader.height(), reader.bytesPerRow());
  if (!pixels || !reader.readAllRows(pixels->data())) return std::nullopt;
  return makeImage(*std::move(pixels), {reader.width(), reader.height()}, reader,
                   CGImageAlphaInfo::last, header.iccProfile);
}

std::optional<CGImage> decodePngReduced(const ByteSource& source, const ImageHeader& header,
                                        std::size_t maxPixelSize) {
  PngReader reader(source);
  if (!reader.start(PngForm::reduced)) return std::nullopt;
  if (reader.isInterlaced()) {
    const std::optional<CGImage> whole = decodePng(source, header);
    return whole ? reducedImage(*whole, maxPixelSize) : std::nullopt;
  }
  const PixelSize target = fittedSize({reader.width(), reader.height()}, maxPixelSize);
  return decodeReduced(reader, target, header.iccProfile);
}

}  // namespace FrameworkUtility::detail
