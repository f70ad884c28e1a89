#include <framework_utility/platform/imageio/image_source.h>

#include <framework_utility/platform/foundation/files/byte_source.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/graphics/image_transform.h>
#include <framework_utility/platform/imageio/formats/decode_request.h>
#include <framework_utility/platform/imageio/formats/foreign_format.h>
#include <framework_utility/platform/imageio/formats/image_codec.h>
#include <framework_utility/platform/imageio/formats/profile_description.h>
#include <framework_utility/platform/imageio/image_source_error.h>
#include <framework_utility/platform/imageio/metadata/exif/embedded_thumbnail.h>
#include <framework_utility/platform/imageio/metadata/metadata_codec.h>
#include <framework_utility/platform/imageio/metadata/property_keys.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <functional>
#include <mutex>
#include <string>
#include <utility>

namespace FrameworkUtility {

namespace {

using detail::ByteSource;
using detail::DecodeRequest;
using detail::failed;
using detail::ImageCodec;
using detail::ImageHeader;

constexpr std::size_t beginningSize = 64;

const ImageCodec* codecFor(const ByteSource& bytes) {
  const Data beginning = bytes.bytes(0, beginningSize);
  for (const ImageCodec* codec : detail::imageCodecs()) {
    if (codec->recognizes(beginning)) return codec;
  }
  return nullptr;
}

/// As the properties name it; null for one that they do not name.
const char* colorModelName(CGColorSpaceModel model) {
  switch (model) {
    case CGColorSpaceModel::monochrome:
      return "Gray";
    case CGColorSpaceModel::rgb:
    case CGColorSpaceModel::indexed:  // its table is of RGB; IsIndexed tells
      return "RGB";
    case CGColorSpaceModel::cmyk:
      return "CMYK";
    case CGColorSpaceModel::lab:
      return "Lab";
    case CGColorSpaceModel::unknown:
      break;
  }
  return nullptr;
}

/// What the header says; a fact that it does not know, or that does not hold, is no entry.
Dictionary propertiesOf(const ImageHeader& header) {
  constexpr std::size_t usual = 16;
  Dictionary properties;
  properties.reserve(usual);
  const auto append = [&](std::string_view key, auto&& value) {
    properties.append(Key::withConstant(key), std::forward<decltype(value)>(value));
  };
  if (const char* model = colorModelName(header.model)) append(kCGImagePropertyColorModel, model);
  append(kCGImagePropertyDepth, header.bitsPerComponent);
  append(kCGImagePropertyPixelWidth, header.width);
  append(kCGImagePropertyPixelHeight, header.height);
  if (header.hasAlpha) append(kCGImagePropertyHasAlpha, true);
  if (header.isIndexed) append(kCGImagePropertyIsIndexed, true);
  detail::MetadataBudget budget;
  if (std::string name = detail::profileDescription(header.iccProfile, budget); !name.empty()) {
    append(kCGImagePropertyProfileName, std::move(name));
  }
  for (const auto& [key, value] : header.formatProperties) properties.set(key, value);
  budget.tell(properties);
  detail::readMetadata(header.blocks, properties);
  return properties;
}

/// The number of an orientation in the file, 1 for none of the eight.
std::size_t orientationOf(const ImageHeader& header) {
  const std::optional<Number> number = detail::readExifOrientation(header.blocks.exif);
  const double orientation = number ? number->doubleValue() : 1;
  return orientation >= 1 && orientation <= 8 ? static_cast<std::size_t>(orientation) : 1;
}

/// What no side of a thumbnail may exceed: at least 1, at most the image's larger side. Absent when
/// no thumbnail is wanted.
std::optional<std::size_t> sideLimit(const std::optional<double>& wanted,
                                     const ImageHeader& header) {
  const std::size_t largerSide = std::max(header.width, header.height);
  if (!wanted || *wanted >= static_cast<double>(largerSide)) return largerSide;
  if (!(*wanted > 0)) return std::nullopt;
  return static_cast<std::size_t>(std::max(*wanted, 1.0));
}

/// Whether a thumbnail shows the whole image and no more. Many cameras pad theirs with black to
/// 160 x 120.
bool hasShapeOf(const ImageHeader& thumbnail, const ImageHeader& image) {
  const double width = static_cast<double>(thumbnail.height) * static_cast<double>(image.width) /
                       static_cast<double>(image.height);
  return std::abs(width - static_cast<double>(thumbnail.width)) <= 1;
}

/// The thumbnail that the file keeps, where it is large enough and whole.
std::optional<CGImage> embeddedThumbnail(const ImageHeader& image, std::size_t limit,
                                         const CGImageSourceLimits& limits) {
  const ByteSource bytes(Data::withBytesNoCopy(detail::embeddedThumbnail(image.blocks.exif),
                                               std::make_shared<const Data>(image.blocks.exif)));
  const ImageCodec* codec = codecFor(bytes);
  if (!codec) return std::nullopt;
  const ImageHeader header = codec->readHeader(bytes);
  if (header.status != CGImageSourceStatus::complete ||
      std::max(header.width, header.height) < limit || !hasShapeOf(header, image)) {
    return std::nullopt;
  }
  return codec->decodeReduced(bytes, header, limit, {.limits = limits});
}

/// Upright as the properties say; both pictures are held for a while.
std::optional<CGImage> upright(const CGImage& image, std::size_t orientation,
                               const DecodeRequest& request) {
  if (orientation == 1) return image;
  if (!detail::isWithinLimits(request, {image.width(), image.height()},
                              2 * std::uint64_t{image.pixels().size()})) {
    return std::nullopt;
  }
  std::optional<CGImage> turned = detail::uprightImage(image, orientation);
  return turned ? turned : detail::failedForMemory(request);
}

/// Copies that keep nothing else of the file alive; blocks of many megabytes are shared with it.
class Compaction {
 public:
  Data operator()(const Data& block) { return (*this)(block, block); }
  /// `part` of `block`.
  Data operator()(const Data& block, std::span<const std::byte> part) {
    if (part.size() > left_) {
      return Data::withBytesNoCopy(part, std::make_shared<const Data>(block));
    }
    left_ -= part.size();
    return Data(part);
  }

 private:
  std::size_t left_ = std::size_t{4} << 20;
};

}  // namespace

std::string_view description(CGImageSourceStatus status) {
  switch (status) {
    case CGImageSourceStatus::complete:
      return "statusComplete";
    case CGImageSourceStatus::incomplete:
      return "statusIncomplete";
    case CGImageSourceStatus::readingHeader:
      return "statusReadingHeader";
    case CGImageSourceStatus::unknownType:
      return "statusUnknownType";
    case CGImageSourceStatus::invalidData:
      return "statusInvalidData";
    case CGImageSourceStatus::unexpectedEOF:
      return "statusUnexpectedEOF";
  }
  return "statusUnknown";
}

/// The bytes, and what was found in them when somebody first asked.
struct CGImageSource::Contents {
  Contents(ByteSource source, std::string file, const CGImageSourceLimits& most)
      : bytes(std::move(source)), path(std::move(file)), limits(most) {}

  // With a mutex, for `std::call_once` costs a system call even when nobody waits.
  const ImageHeader& header() const {
    if (isRead_.load(std::memory_order_acquire)) return header_;
    const std::lock_guard lock(mutex_);
    if (!isRead_.load(std::memory_order_relaxed)) {
      codec_ = codecFor(bytes);
      if (codec_) header_ = codec_->readHeader(bytes);
      isRead_.store(true, std::memory_order_release);
    }
    return header_;
  }
  /// Null when the bytes are no image.
  const ImageCodec* codec() const {
    header();
    return codec_;
  }
  bool hasImageAt(std::size_t index, Error* error = nullptr) const {
    if (index == 0 && header().status == CGImageSourceStatus::complete) return true;
    if (error) explainAbsence({.limits = limits, .path = path, .error = error});
    return false;
  }

  const ByteSource bytes;
  const std::string path;  // empty without a file
  const CGImageSourceLimits limits;

 private:
  void explainAbsence(const DecodeRequest& request) const {
    switch (header().status) {
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
    const std::string format(detail::foreignFormat(bytes.bytes(0, beginningSize)));
    if (!format.empty()) {
      failed(request, CGImageSourceError::unsupported, format + " is not read here.");
    } else {
      failed(request, CGImageSourceError::corruptFile,
             bytes.size() == 0 ? "The file is empty." : "The file is not an image.");
    }
  }

  mutable std::mutex mutex_;
  mutable std::atomic<bool> isRead_ = false;
  mutable const ImageCodec* codec_ = nullptr;
  mutable ImageHeader header_;
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
  return CGImageSource(std::make_shared<const Contents>(*std::move(bytes), *path, options.limits));
}

std::optional<CGImageSource> CGImageSource::createWithData(const Data& data,
                                                           const CGImageSourceOptions& options) {
  return CGImageSource(
      std::make_shared<const Contents>(ByteSource(data), std::string(), options.limits));
}

CGImageSourceStatus CGImageSource::status() const { return contents_->header().status; }

std::optional<std::string> CGImageSource::type() const {
  const ImageCodec* codec = contents_->codec();
  return codec ? std::optional(std::string(codec->typeIdentifier())) : std::nullopt;
}

std::size_t CGImageSource::count() const { return contents_->hasImageAt(0) ? 1 : 0; }

std::optional<Dictionary> CGImageSource::properties() const {
  if (!contents_->codec()) return std::nullopt;
  return Dictionary{{kCGImagePropertyFileSize, contents_->bytes.size()}};
}

std::optional<Dictionary> CGImageSource::propertiesAtIndex(std::size_t index, Error* error) const {
  if (!contents_->hasImageAt(index, error)) return std::nullopt;
  return propertiesOf(contents_->header());
}

std::optional<Dictionary> CGImageSource::auxiliaryDataInfoAtIndex(std::size_t,
                                                                  std::string_view) const {
  return std::nullopt;  // none of the formats read here has such data
}

std::shared_ptr<const MetadataBlocks> CGImageSource::metadataBlocksAtIndex(
    std::size_t index) const {
  if (!contents_->hasImageAt(index)) return nullptr;
  const MetadataBlocks& stored = contents_->header().blocks;
  auto blocks = std::make_shared<MetadataBlocks>();
  Compaction compact;
  blocks->exif = compact(stored.exif, detail::withoutEmbeddedThumbnail(stored.exif));
  blocks->xmp = compact(stored.xmp);
  blocks->extendedXmp = compact(stored.extendedXmp);
  blocks->imageResources = compact(stored.imageResources);
  blocks->format = stored.format;
  for (const FormatPart& part : stored.formatParts) {
    blocks->formatParts.push_back({part.kind, compact(part.contents)});
  }
  return blocks;
}

std::optional<CGImage> CGImageSource::imageAtIndex(std::size_t index, Error* error) const {
  if (!contents_->hasImageAt(index, error)) return std::nullopt;
  return contents_->codec()->decode(
      contents_->bytes, contents_->header(),
      {detail::lowerLimits(contents_->limits, {}), contents_->path, error});
}

std::optional<CGImage> CGImageSource::thumbnailAtIndex(std::size_t index,
                                                       const CGImageSourceThumbnailOptions& options,
                                                       Error* error) const {
  if (!contents_->hasImageAt(index, error)) return std::nullopt;
  const ImageHeader& header = contents_->header();
  const DecodeRequest request{detail::lowerLimits(contents_->limits, options.limits),
                              contents_->path, error};
  const std::optional<std::size_t> limit = sideLimit(options.thumbnailMaxPixelSize, header);
  if (!limit) {
    return failed(request, CGImageSourceError::noSuchImage, "A thumbnail needs a side above 0.");
  }
  std::optional<CGImage> image;
  if (!options.createThumbnailFromImageAlways) {
    image = embeddedThumbnail(header, *limit, request.limits);
  }
  if (!image) image = contents_->codec()->decodeReduced(contents_->bytes, header, *limit, request);
  if (image && options.createThumbnailWithTransform) {
    image = upright(*image, orientationOf(header), request);
  }
  return image;
}

}  // namespace FrameworkUtility
