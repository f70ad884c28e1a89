#include <framework_utility/platform/imageio/image_destination.h>

#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/foundation/values/fail.h>
#include <framework_utility/platform/imageio/image_formats.h>
#include <framework_utility/platform/imageio/metadata/metadata.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace FrameworkUtility {

namespace {

using detail::EncodeRequest;

/// The profile that a file has to bear. None for the spaces that a reader assumes without one.
Data profileOf(const CGImage& image) {
  const std::optional<CGColorSpace>& space = image.colorSpace();
  if (!space || space->name() == kCGColorSpaceSRGB || space->name() == kCGColorSpaceGenericGray) {
    return {};
  }
  return space->iccData().value_or(Data());
}

EncodeRequest requestFor(const CGImage& image, const Dictionary& properties,
                         const MetadataBlocks* blocks) {
  EncodeRequest request;
  const Number* quality = properties.get<Number>(kCGImageDestinationLossyCompressionQuality);
  if (quality && quality->doubleValue() >= 0) {
    request.quality = std::min(quality->doubleValue(), 1.0);
  }
  request.iccProfile = profileOf(image);
  request.properties = properties;
  request.blocks = detail::mergeMetadata(blocks, properties, {image.width(), image.height()});
  return request;
}

bool cannotFinalize(std::string_view why, Error* error) {
  return detail::fail(error, {NSCocoaErrorDomain, NSFileWriteUnknownError, {}}, why);
}

}  // namespace

struct CGImageDestination::Contents {
  struct AuxiliaryData {
    std::string type;
    Dictionary info;
  };
  struct Picture {
    CGImage image;
    EncodeRequest request;
    std::vector<AuxiliaryData> auxiliaryData;
  };

  std::unique_ptr<detail::ImageWriter> writer;
  std::optional<std::string> path;  // absent: in memory
  std::size_t count = 0;
  Dictionary properties;
  std::vector<Picture> pictures;
  bool isFinalized = false;
  std::optional<Data> data;
};

CGImageDestination::CGImageDestination() = default;

CGImageDestination::~CGImageDestination() = default;

std::unique_ptr<CGImageDestination> CGImageDestination::createWithURL(
    const URL& url, std::string_view typeIdentifier, std::size_t count) {
  std::optional<std::string> path = url.isFileURL() ? url.path() : std::nullopt;
  std::unique_ptr<CGImageDestination> destination =
      path ? createInMemory(typeIdentifier, count) : nullptr;
  if (destination) destination->contents_->path = std::move(path);
  return destination;
}

std::unique_ptr<CGImageDestination> CGImageDestination::createInMemory(
    std::string_view typeIdentifier, std::size_t count) {
  const detail::ImageFormat* format = detail::imageFormatForType(typeIdentifier);
  std::unique_ptr<detail::ImageWriter> writer =
      format ? format->create(typeIdentifier, count) : nullptr;
  if (!writer) return nullptr;
  std::unique_ptr<CGImageDestination> destination(new CGImageDestination);
  destination->contents_ = std::make_unique<Contents>();
  destination->contents_->writer = std::move(writer);
  destination->contents_->count = count;
  return destination;
}

void CGImageDestination::setProperties(const Dictionary& properties) {
  contents_->properties = properties;
}

void CGImageDestination::addImage(const CGImage& image, const Dictionary& properties,
                                  const std::shared_ptr<const MetadataBlocks>& blocks) {
  if (contents_->isFinalized) return;
  contents_->pictures.push_back({image, requestFor(image, properties, blocks.get()), {}});
}

void CGImageDestination::addAuxiliaryDataInfo(std::string_view type, const Dictionary& info) {
  if (contents_->pictures.empty()) return;
  contents_->pictures.back().auxiliaryData.push_back({std::string(type), info});
}

bool CGImageDestination::finalize(Error* error) {
  if (std::exchange(contents_->isFinalized, true)) {
    return cannotFinalize("the image file was finished before", error);
  }
  const std::size_t count = contents_->pictures.size();
  if (count == 0 || count != contents_->count) {
    return cannotFinalize("an image file of " + std::to_string(contents_->count) +
                              " images was announced and has " + std::to_string(count),
                          error);
  }
  detail::ImageWriter& writer = *contents_->writer;
  for (const auto& [image, request, auxiliaryData] : contents_->pictures) {
    if (!writer.addImage(image, request)) return cannotFinalize(writer.problem(), error);
    for (const auto& [type, info] : auxiliaryData) writer.addAuxiliaryDataInfo(type, info);
  }
  std::vector<std::byte> file;
  if (!writer.finish(contents_->properties, file)) return cannotFinalize(writer.problem(), error);
  if (contents_->path) {
    return FileManager::defaultManager().writeAtomically(file, *contents_->path, error);
  }
  contents_->data = Data(std::move(file));
  return true;
}

std::optional<Data> CGImageDestination::data() const { return contents_->data; }

}  // namespace FrameworkUtility
