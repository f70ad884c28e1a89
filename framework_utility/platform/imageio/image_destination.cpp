#include <framework_utility/platform/imageio/image_destination.h>

#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/imageio/formats/image_codec.h>
#include <framework_utility/platform/imageio/metadata/metadata_codec.h>
#include <framework_utility/platform/imageio/metadata/property_keys.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace FrameworkUtility {

namespace {

using detail::EncodeRequest;
using detail::ImageCodec;

/// Null for a type that is not written.
const ImageCodec* codecFor(std::string_view typeIdentifier) {
  const auto codecs = detail::imageCodecs();
  const auto found = std::find_if(codecs.begin(), codecs.end(), [&](const ImageCodec* codec) {
    return codec->typeIdentifier() == typeIdentifier;
  });
  return found == codecs.end() ? nullptr : *found;
}

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

}  // namespace

struct CGImageDestination::Contents {
  struct Picture {
    CGImage image;
    EncodeRequest request;
  };

  const ImageCodec* codec = nullptr;
  std::optional<std::string> path;  // absent: in memory
  std::size_t count = 0;
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
  const ImageCodec* codec = codecFor(typeIdentifier);
  if (!codec) return nullptr;
  std::unique_ptr<CGImageDestination> destination(new CGImageDestination);
  destination->contents_ = std::make_unique<Contents>();
  destination->contents_->codec = codec;
  destination->contents_->count = count;
  return destination;
}

void CGImageDestination::addImage(const CGImage& image, const Dictionary& properties,
                                  const std::shared_ptr<const MetadataBlocks>& blocks) {
  if (!contents_->isFinalized) {
    contents_->pictures.push_back({image, requestFor(image, properties, blocks.get())});
  }
}

// None of the formats written here holds auxiliary data.
void CGImageDestination::addAuxiliaryDataInfo(std::string_view, const Dictionary&) {}

bool CGImageDestination::finalize(Error* error) {
  if (std::exchange(contents_->isFinalized, true)) {
    return detail::cannotEncode("the image file was finished before", error);
  }
  // Every format written here holds one image.
  if (contents_->count != 1 || contents_->pictures.size() != 1) {
    return detail::cannotEncode("an image file of " + std::to_string(contents_->count) +
                                    " images was announced and has " +
                                    std::to_string(contents_->pictures.size()) + "; it must be 1",
                                error);
  }
  const Contents::Picture& picture = contents_->pictures.front();
  std::vector<std::byte> bytes;
  if (!contents_->codec->encode(picture.image, picture.request, bytes, error)) return false;
  if (contents_->path) {
    return FileManager::defaultManager().writeAtomically(bytes, *contents_->path, error);
  }
  contents_->data = Data(std::move(bytes));
  return true;
}

std::optional<Data> CGImageDestination::data() const { return contents_->data; }

}  // namespace FrameworkUtility
