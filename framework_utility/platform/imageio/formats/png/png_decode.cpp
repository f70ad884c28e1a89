#include <framework_utility/platform/imageio/formats/png/png_decode.h>

#include <framework_utility/platform/graphics/area_scaler.h>
#include <framework_utility/platform/graphics/pixel_buffer.h>
#include <framework_utility/platform/graphics/rgba_rows.h>
#include <framework_utility/platform/imageio/formats/png/png_reader.h>

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

}  // namespace

std::optional<CGImage> decodePng(const ByteSource& source, const ImageHeader& header,
                                 const DecodeRequest& request) {
  PngReader reader(source, request);
  if (!reader.open(PngForm::whole)) return reader.failed();
  const PixelSize size{reader.width(), reader.height()};
  if (!isWithinLimits(request, size, reader.memory() + size.height * reader.bytesPerRow())) {
    return std::nullopt;
  }
  std::optional<PixelBuffer> pixels = PixelBuffer::allocate(size.height, reader.bytesPerRow());
  if (!pixels) return failedForMemory(request);
  if (!reader.start() || !reader.readAllRows(pixels->data())) return reader.failed();
  return makeImage(*std::move(pixels), size, reader, CGImageAlphaInfo::last, header.iccProfile);
}

std::optional<CGImage> decodePngReduced(const ByteSource& source, const ImageHeader& header,
                                        std::size_t maxPixelSize, const DecodeRequest& request) {
  PngReader reader(source, request);
  if (!reader.open(PngForm::reduced)) return reader.failed();
  const PixelSize size{reader.width(), reader.height()};
  const PixelSize target = fittedSize(size, maxPixelSize);
  const std::size_t components = reader.components();
  // The last pass of an interlaced picture brings half of its rows.
  const bool isInterlaced = reader.isInterlaced();
  const std::size_t rowsHeld = isInterlaced ? size.height : 1;
  if (!isWithinLimits(request, size,
                      reader.memory() + rowsHeld * reader.bytesPerRow() +
                          target.height * target.width * components +
                          AreaScaler::memory(size, target, components))) {
    return std::nullopt;
  }
  std::optional<AreaScaler> scaler = AreaScaler::create(size, target, components);
  std::optional<PixelBuffer> rows = PixelBuffer::allocate(rowsHeld, reader.bytesPerRow());
  std::optional<PixelBuffer> pixels =
      PixelBuffer::allocate(target.height, target.width * components);
  if (!scaler || !rows || !pixels) return failedForMemory(request);
  if (!reader.start() || (isInterlaced && !reader.readAllRows(rows->data()))) {
    return reader.failed();
  }
  std::size_t done = 0;
  for (std::size_t y = 0; y < size.height && done < target.height; ++y) {
    std::uint8_t* row = rows->row(isInterlaced ? y : 0);
    if (!isInterlaced && !reader.readRow(row)) return reader.failed();
    if (reader.hasAlpha()) premultiply(row, size.width);
    if (scaler->push(row, pixels->row(done))) ++done;
  }
  return makeImage(*std::move(pixels), target, reader, CGImageAlphaInfo::premultipliedLast,
                   header.iccProfile);
}

}  // namespace FrameworkUtility::detail
