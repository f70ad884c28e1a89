#include <framework_utility/platform/imageio/row_decoding.h>

#include <framework_utility/platform/foundation/files/posix_error.h>
#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/graphics/image_reducer.h>
#include <framework_utility/platform/graphics/image_transform.h>
#include <framework_utility/platform/graphics/pixel_buffer.h>
#include <framework_utility/platform/imageio/image_source_error.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>

namespace FrameworkUtility::detail {

namespace {

Failure failedForMemory(const DecodeRequest& request) {
  return fail(request.error, {ENOMEM, FileAccess::reading}, request.path);
}

Failure failedFor(RowState state, const DecodeRequest& request) {
  switch (state) {
    case RowState::cut:
      return failed(request, CGImageSourceError::corruptFile, cutOff);
    case RowState::unsupported:
      return failed(request, CGImageSourceError::unsupported);
    case RowState::tooManyScans:
      return failed(request, CGImageSourceError::tooLarge,
                    "The image has more scans than the limit of " +
                        std::to_string(request.limits.mostScans) + ".");
    case RowState::memoryIsShort:
      return failedForMemory(request);
    default:
      return failed(request, CGImageSourceError::corruptFile);
  }
}

/// Whether an image of this size may be decoded, for which `memory` bytes are needed at once: the
/// result, the rows on their way, and what the codec keeps. When not, the error says by how much.
bool isWithinLimits(const DecodeRequest& request, const PixelSize& size, std::uint64_t memory) {
  const auto& [mostPixels, mostMemory, mostScans] = request.limits;
  const std::uint64_t pixels = std::uint64_t{size.width} * size.height;
  if (pixels > mostPixels) {
    failed(request, CGImageSourceError::tooLarge,
           "The image has " + std::to_string(pixels) + " pixels, more than the limit of " +
               std::to_string(mostPixels) + ".");
    return false;
  }
  if (memory > mostMemory) {
    failed(request, CGImageSourceError::tooLarge,
           "The image takes " + std::to_string(memory) +
               " bytes of memory to decode, more than the limit of " + std::to_string(mostMemory) +
               ".");
    return false;
  }
  return true;
}

std::unique_ptr<RowReader> rowsOf(const ImageReader& reader, std::size_t index,
                                  const PixelSize& least, const DecodeRequest& request) {
  return reader.rowsAt(index, {.least = least,
                               .mostMemory = request.limits.mostMemory,
                               .mostScans = request.limits.mostScans});
}

/// The profile's space where it has as many components as the rows, else the plain one.
CGColorSpace spaceOf(const RowReader& rows, const Data& profile) {
  const CGColorSpace plain =
      rows.model() == CGColorSpaceModel::monochrome ? CGColorSpace::createDeviceGray()
      : rows.model() == CGColorSpaceModel::cmyk     ? CGColorSpace::createDeviceCMYK()
                                                    : CGColorSpace::createDeviceRGB();
  if (profile.empty()) return plain;
  const std::optional<CGColorSpace> space = CGColorSpace::createWithICCData(profile);
  return space && space->numberOfComponents() == plain.numberOfComponents() ? *space : plain;
}

PixelSize sizeOf(const RowReader& rows) { return {rows.layout().width, rows.layout().height}; }

/// All rows as they come.
std::optional<CGImage> imageOf(RowReader& rows, const ImageHeader& header,
                               const DecodeRequest& request) {
  const auto [width, height] = sizeOf(rows);
  const std::size_t bytesPerRow = rows.layout().bytesPerRow;
  if (!isWithinLimits(request, header.size, rows.memory() + height * bytesPerRow)) {
    return std::nullopt;
  }
  std::optional<PixelBuffer> pixels = PixelBuffer::allocate(height, bytesPerRow);
  if (!pixels) return failedForMemory(request);
  if (rows.readRows(pixels->data(), height) < height) return failedFor(rows.state(), request);
  return CGImage::create(rows.layout(), spaceOf(rows, header.iccProfile),
                         std::move(*pixels).share());
}

}  // namespace

CGImageSourceLimits lowerLimits(const CGImageSourceLimits& a, const CGImageSourceLimits& b) {
  constexpr CGImageSourceLimits all;
  return {.mostPixels = std::min({a.mostPixels, b.mostPixels, all.mostPixels}),
          .mostMemory = std::min({a.mostMemory, b.mostMemory, all.mostMemory}),
          .mostScans = std::min({a.mostScans, b.mostScans, all.mostScans})};
}

Failure failed(const DecodeRequest& request, const ErrorCode& code, std::string_view description) {
  Dictionary file;
  if (!request.path.empty()) file.set(Key::withConstant(NSFilePathErrorKey), request.path);
  return fail(request.error, code, description, file);
}

std::optional<CGImage> decodedImage(const ImageReader& reader, std::size_t index,
                                    const DecodeRequest& request) {
  const std::unique_ptr<RowReader> rows = rowsOf(reader, index, {}, request);
  if (rows->state() != RowState::whole) return failedFor(rows->state(), request);
  return imageOf(*rows, *reader.headerAt(index), request);
}

std::optional<CGImage> decodedReducedImage(const ImageReader& reader, std::size_t index,
                                           std::size_t maxPixelSize, const DecodeRequest& request) {
  const std::shared_ptr<const ImageHeader> header = reader.headerAt(index);
  const PixelSize target = fittedSize(header->size, maxPixelSize);
  const std::unique_ptr<RowReader> rows = rowsOf(reader, index, target, request);
  if (rows->state() != RowState::whole) return failedFor(rows->state(), request);
  const CGImageLayout& layout = rows->layout();
  const PixelSize size = sizeOf(*rows);
  if (size == target && layout.bitsPerComponent == 8 && !carriesAlpha(layout.alphaInfo)) {
    return imageOf(*rows, *header, request);
  }

  const CGColorSpace space = spaceOf(*rows, header->iccProfile);
  const std::size_t rowsHeld = rows->isWhole() ? size.height : 1;
  if (!isWithinLimits(request, header->size,
                      rows->memory() + rowsHeld * layout.bytesPerRow +
                          ImageReducer::memory(layout, space, target))) {
    return std::nullopt;
  }
  std::optional<ImageReducer> reducer = ImageReducer::create(layout, space, target);
  std::optional<PixelBuffer> held = PixelBuffer::allocate(rowsHeld, layout.bytesPerRow);
  if (!reducer || !held) return failedForMemory(request);
  for (std::size_t y = 0; y < size.height && !reducer->isDone(); ++y) {
    const std::size_t place = y % rowsHeld;
    if (place == 0 && rows->readRows(held->data(), rowsHeld) < rowsHeld) {
      return failedFor(rows->state(), request);
    }
    reducer->push(held->row(place));
  }
  return std::move(*reducer).image();
}

std::optional<CGImage> turnedImage(const CGImage& image, std::size_t exifOrientation,
                                   const DecodeRequest& request) {
  if (exifOrientation == 1) return image;
  // Both pictures are held for a while.
  if (!isWithinLimits(request, {image.width(), image.height()},
                      2 * std::uint64_t{image.pixels().size()})) {
    return std::nullopt;
  }
  std::optional<CGImage> turned = uprightImage(image, exifOrientation);
  return turned ? turned : failedForMemory(request);
}

}  // namespace FrameworkUtility::detail
