#include <framework_utility/platform/imageio/image_source.h>

#include <framework_utility/platform/foundation/files/byte_source.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/imageio/embedded_image.h>
#include <framework_utility/platform/imageio/foreign_format.h>
#include <framework_utility/platform/imageio/image_formats.h>
#include <framework_utility/platform/imageio/image_properties.h>
#include <framework_utility/platform/imageio/image_source_error.h>
#include <framework_utility/platform/imageio/metadata/compact_blocks.h>
#include <framework_utility/platform/imageio/metadata/exif/exif.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>
#include <framework_utility/platform/imageio/row_decoding.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <string>
#include <utility>

namespace FrameworkUtility {

namespace {

using detail::ByteSource;
using detail::DecodeRequest;
using detail::failed;
using detail::ImageHeader;
using detail::ImageReader;

/// The number of an orientation in the file, 1 for none of the eight.
std::size_t orientationOf(const ImageHeader& header) {
  const std::optional<Number> number = detail::readExifOrientation(header.blocks.exif);
  const double orientation = number ? number->doubleValue() : 1;
  return orientation >= 1 && orientation <= 8 ? static_cast<std::size_t>(orientation) : 1;
}

/// What no side of a thumbnail may exceed: at least 1, at most the image's larger side. Absent when
/// no thumbnail is wanted.
std::optional<std::size_t> sideLimit(const std::optional<double>& wanted,
                                     const detail::PixelSize& size) {
  const std::size_t largerSide = std::max(size.width, size.height);
  if (!wanted || *wanted >= static_cast<double>(largerSide)) return largerSide;
  if (!(*wanted > 0)) return std::nullopt;
  return static_cast<std::size_t>(std::max(*wanted, 1.0));
}

}  // namespace

/// The bytes, and what was found in them when somebody first asked.
struct CGImageSource::Contents {
  Contents(ByteSource source, std::string file, CGImageSourceOptions given)
      : bytes(std::move(source)), path(std::move(file)), options(std::move(given)) {}

  /// Null when the bytes are no image.
  // With a mutex, for `std::call_once` costs a system call even when nobody waits.
  const ImageReader* reader() const {
    if (isOpened_.load(std::memory_order_acquire)) return reader_.get();
    const std::lock_guard lock(mutex_);
    if (!isOpened_.load(std::memory_order_relaxed)) {
      const std::string_view hint =
          options.typeIdentifierHint ? *options.typeIdentifierHint : std::string_view();
      const detail::ImageFormat* format =
          detail::imageFormatOf(bytes.bytes(0, detail::sniffedSize), hint);
      if (format) reader_ = format->open(bytes);
      isOpened_.store(true, std::memory_order_release);
    }
    return reader_.get();
  }
  /// Null, with a reason, when there is no image at this index.
  const ImageReader* readerFor(std::size_t index, Error* error = nullptr) const {
    if (reader() && index < reader()->count()) return reader();
    if (error) explainAbsence(request(error));
    return nullptr;
  }
  DecodeRequest request(Error* error, const CGImageSourceLimits& limits = {}) const {
    return {detail::lowerLimits(options.limits, limits), path, error};
  }

  const ByteSource bytes;
  const std::string path;  // empty without a file
  const CGImageSourceOptions options;

 private:
  void explainAbsence(const DecodeRequest& request) const {
    switch (reader() ? reader()->status() : CGImageSourceStatus::unknownType) {
      case CGImageSourceStatus::complete:
        failed(request, CGImageSourceError::noSuchImage);
        return;
      case CGImageSourceStatus::incomplete:
        failed(request, CGImageSourceError::corruptFile, detail::cutOff);
        return;
      case CGImageSourceStatus::unknownType:
        break;
      default:
        failed(request, CGImageSourceError::corruptFile);
        return;
    }
    const std::string format(detail::foreignFormat(bytes.bytes(0, detail::sniffedSize)));
    if (!format.empty()) {
      failed(request, CGImageSourceError::unsupported, format + " is not read here.");
    } else {
      failed(request, CGImageSourceError::corruptFile,
             bytes.size() == 0 ? "The file is empty." : "The file is not an image.");
    }
  }

  mutable std::mutex mutex_;
  mutable std::atomic<bool> isOpened_ = false;
  mutable std::unique_ptr<ImageReader> reader_;
};

CGImageSource::CGImageSource(std::shared_ptr<const Contents> contents)
    : contents_(std::move(contents)) {}

std::optional<CGImageSource> CGImageSource::createWithURL(const URL& url,
                                                          const CGImageSourceOptions& options,
                                                          Error* error) {
  const std::optional<std::string> path = url.isFileURL() ? url.path() : std::nullopt;
  if (!path) return failed({.error = error}, CGImageSourceError::notAFileURL);
  std::optional<ByteSource> bytes = ByteSource::open(FileManager::defaultManager(), *path, error);
  if (!bytes) return std::nullopt;
  return CGImageSource(std::make_shared<const Contents>(*std::move(bytes), *path, options));
}

std::optional<CGImageSource> CGImageSource::createWithData(const Data& data,
                                                           const CGImageSourceOptions& options) {
  return CGImageSource(std::make_shared<const Contents>(ByteSource(data), std::string(), options));
}

CGImageSourceStatus CGImageSource::status() const {
  const ImageReader* reader = contents_->reader();
  return reader ? reader->status() : CGImageSourceStatus::unknownType;
}

std::optional<std::string> CGImageSource::type() const {
  const ImageReader* reader = contents_->reader();
  return reader ? std::optional(std::string(reader->type())) : std::nullopt;
}

std::size_t CGImageSource::count() const {
  const ImageReader* reader = contents_->reader();
  return reader ? reader->count() : 0;
}

std::optional<Dictionary> CGImageSource::properties() const {
  const ImageReader* reader = contents_->reader();
  if (!reader) return std::nullopt;
  Dictionary properties = reader->containerProperties();
  properties.set(kCGImagePropertyFileSize, contents_->bytes.size());
  return properties;
}

std::optional<Dictionary> CGImageSource::propertiesAtIndex(std::size_t index, Error* error) const {
  const ImageReader* reader = contents_->readerFor(index, error);
  return reader ? std::optional(detail::imageProperties(*reader->headerAt(index))) : std::nullopt;
}

std::optional<Dictionary> CGImageSource::auxiliaryDataInfoAtIndex(std::size_t index,
                                                                  std::string_view type) const {
  const ImageReader* reader = contents_->readerFor(index);
  return reader ? reader->auxiliaryDataInfoAt(index, type) : std::nullopt;
}

std::shared_ptr<const MetadataBlocks> CGImageSource::metadataBlocksAtIndex(
    std::size_t index) const {
  const ImageReader* reader = contents_->readerFor(index);
  if (!reader) return nullptr;
  return std::make_shared<const MetadataBlocks>(
      detail::compactBlocks(reader->headerAt(index)->blocks));
}

std::optional<CGImage> CGImageSource::imageAtIndex(std::size_t index, Error* error) const {
  const ImageReader* reader = contents_->readerFor(index, error);
  return reader ? detail::decodedImage(*reader, index, contents_->request(error)) : std::nullopt;
}

std::optional<CGImage> CGImageSource::thumbnailAtIndex(std::size_t index,
                                                       const CGImageSourceThumbnailOptions& options,
                                                       Error* error) const {
  const ImageReader* reader = contents_->readerFor(index, error);
  if (!reader) return std::nullopt;
  const std::shared_ptr<const ImageHeader> header = reader->headerAt(index);
  const DecodeRequest request = contents_->request(error, options.limits);
  const std::optional<std::size_t> limit = sideLimit(options.thumbnailMaxPixelSize, header->size);
  if (!limit) {
    return failed(request, CGImageSourceError::noSuchImage, "A thumbnail needs a side above 0.");
  }
  std::optional<CGImage> image;
  if (!options.createThumbnailFromImageAlways) {
    image = detail::embeddedThumbnailImage(*header, *limit, request.limits);
  }
  if (!image) image = detail::decodedReducedImage(*reader, index, *limit, request);
  if (image && options.createThumbnailWithTransform) {
    image = detail::turnedImage(*image, orientationOf(*header), request);
  }
  return image;
}

}  // namespace FrameworkUtility
