#include <framework_utility/platform/imageio/formats/jpeg/jpeg_decode.h>

#include <framework_utility/platform/graphics/area_scaler.h>
#include <framework_utility/platform/graphics/pixel_buffer.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_reader.h>

#include <utility>

namespace FrameworkUtility::detail {

namespace {

std::byte* bytes(std::uint8_t* samples) { return reinterpret_cast<std::byte*>(samples); }

/// The profile's space, else the plain one for as many components.
CGColorSpace spaceFor(const Data& profile, const JpegReader& reader) {
  const std::size_t components = reader.bytesPerPixel() == 1 ? 1 : reader.isCmyk() ? 4 : 3;
  if (!profile.empty()) {
    const std::optional<CGColorSpace> space = CGColorSpace::createWithICCData(profile);
    if (space && space->numberOfComponents() == components) return *space;
  }
  return components == 1   ? CGColorSpace::createDeviceGray()
         : components == 4 ? CGColorSpace::createDeviceCMYK()
                           : CGColorSpace::createDeviceRGB();
}

std::optional<CGImage> makeImage(PixelBuffer pixels, const PixelSize& size,
                                 const JpegReader& reader, const Data& profile) {
  const bool isRgb = reader.bytesPerPixel() == 4 && !reader.isCmyk();
  return CGImage::create(
      {.width = size.width,
       .height = size.height,
       .bitsPerPixel = 8 * reader.bytesPerPixel(),
       .bytesPerRow = pixels.bytesPerRow(),
       .alphaInfo = isRgb ? CGImageAlphaInfo::noneSkipLast : CGImageAlphaInfo::none},
      spaceFor(profile, reader), std::move(pixels).share());
}

/// All of a reader that has been opened, as it comes.
std::optional<CGImage> readAll(JpegReader& reader, const PixelSize& size, const Data& profile,
                               const DecodeRequest& request) {
  const PixelSize result{reader.width(), reader.height()};
  const std::size_t bytesPerRow = result.width * reader.bytesPerPixel();
  if (!isWithinLimits(request, size, reader.memory() + result.height * bytesPerRow)) {
    return std::nullopt;
  }
  std::optional<PixelBuffer> pixels = PixelBuffer::allocate(result.height, bytesPerRow);
  if (!pixels) return failedForMemory(request);
  if (!reader.start() || !reader.readRows(bytes(pixels->data()), bytesPerRow, result.height)) {
    return reader.failed();
  }
  return makeImage(*std::move(pixels), result, reader, profile);
}

/// The fewest eighths that libjpeg may reduce to and still leave no less than the target.
unsigned eighthsFor(const PixelSize& size, const PixelSize& target) {
  for (const unsigned eighths : {1U, 2U, 4U}) {
    if (size.width * eighths >= target.width * 8 && size.height * eighths >= target.height * 8) {
      return eighths;
    }
  }
  return 8;
}

}  // namespace

std::optional<CGImage> decodeJpeg(const ByteSource& source, const ImageHeader& header,
                                  const DecodeRequest& request) {
  JpegReader reader(source, request);
  if (!reader.open(8)) return reader.failed();
  return readAll(reader, {header.width, header.height}, header.iccProfile, request);
}

std::optional<CGImage> decodeJpegReduced(const ByteSource& source, const ImageHeader& header,
                                         std::size_t maxPixelSize, const DecodeRequest& request) {
  const PixelSize size{header.width, header.height};
  const PixelSize target = fittedSize(size, maxPixelSize);
  JpegReader reader(source, request);
  if (!reader.open(eighthsFor(size, target))) return reader.failed();
  const PixelSize reduced{reader.width(), reader.height()};
  if (reduced == target) return readAll(reader, size, header.iccProfile, request);

  const std::size_t pixelBytes = reader.bytesPerPixel();
  const std::size_t targetRow = target.width * pixelBytes;
  if (!isWithinLimits(request, size,
                      reader.memory() + reduced.width * pixelBytes + target.height * targetRow +
                          AreaScaler::memory(reduced, target, pixelBytes))) {
    return std::nullopt;
  }
  std::optional<AreaScaler> scaler = AreaScaler::create(reduced, target, pixelBytes);
  std::optional<PixelBuffer> row = PixelBuffer::allocate(1, reduced.width * pixelBytes);
  std::optional<PixelBuffer> pixels = PixelBuffer::allocate(target.height, targetRow);
  if (!scaler || !row || !pixels) return failedForMemory(request);
  if (!reader.start()) return reader.failed();
  std::size_t done = 0;
  for (std::size_t y = 0; y < reduced.height && done < target.height; ++y) {
    if (!reader.readRows(bytes(row->data()), row->bytesPerRow(), 1)) return reader.failed();
    done += scaler->push(row->data(), pixels->row(done)) ? 1 : 0;
  }
  return makeImage(*std::move(pixels), target, reader, header.iccProfile);
}

}  // namespace FrameworkUtility::detail
