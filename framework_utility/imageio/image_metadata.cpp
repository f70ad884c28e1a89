#include <framework_utility/imageio/image_metadata.h>

#include <framework_utility/errors/fail.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/imageio/image_destination.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <string>
#include <utility>

namespace FrameworkUtility {

using detail::fail;

KvImageMetadata::KvImageMetadata() : properties_(Dictionary()) {}

KvImageMetadata KvImageMetadata::withProperties(std::optional<Dictionary> properties) {
  return withProperties(std::move(properties), std::nullopt, std::nullopt);
}

KvImageMetadata KvImageMetadata::withProperties(
    std::optional<Dictionary> properties, std::optional<Dictionary> auxiliaryDataInfoDepth,
    std::optional<Dictionary> auxiliaryDataInfoDisparity) {
  KvImageMetadata metadata;
  if (properties) metadata.properties_ = std::move(properties);
  metadata.auxiliaryDataInfoDepth_ = std::move(auxiliaryDataInfoDepth);
  metadata.auxiliaryDataInfoDisparity_ = std::move(auxiliaryDataInfoDisparity);
  return metadata;
}

std::optional<KvImageMetadata> KvImageMetadata::withUrl(const std::optional<URL>& url,
                                                        Error* error) {
  if (!url) return fail(error, KvImageMetadataError::urlIsNil);
  const std::optional<std::string> path = url->path();
  if (!path) return fail(error, KvImageMetadataError::fileDoesNotExist);
  Error cause;
  if (!FileManager::defaultManager().attributesOfItemAtPath(*path, &cause)) {
    return fail(error, KvImageMetadataError::fileDoesNotExist, cause);
  }
  const std::optional<CGImageSource> source = CGImageSource::createWithURL(*url, {}, &cause);
  if (!source) return fail(error, KvImageMetadataError::noImageSource, cause);
  return withImageSource(source, error);
}

std::optional<KvImageMetadata> KvImageMetadata::withData(const std::optional<Data>& data,
                                                         const std::optional<UTType>& uti,
                                                         Error* error) {
  if (!data) return fail(error, KvImageMetadataError::dataIsNil);
  CGImageSourceOptions options;
  if (uti) options.typeIdentifierHint = uti->identifier();
  return withImageSource(CGImageSource::createWithData(*data, options), error);
}

std::optional<KvImageMetadata> KvImageMetadata::withImageSource(
    const std::optional<CGImageSource>& source, Error* error) {
  if (!source) return fail(error, KvImageMetadataError::noImageSource);
  if (const CGImageSourceStatus status = source->status();
      status != CGImageSourceStatus::complete) {
    const ErrorCode& code = KvImageMetadataError::sourceNotComplete;
    Error cause;
    (void)source->propertiesAtIndex(0, &cause);
    return fail(error, code,
                std::string(code.message) + std::string(description(status)) + " is not complete.",
                cause);
  }
  std::optional<Dictionary> properties = source->propertiesAtIndex(0);
  if (!properties) return fail(error, KvImageMetadataError::noProperties);

  KvImageMetadata metadata = withProperties(std::move(properties));
  metadata.auxiliaryDataInfoDisparity_ =
      source->auxiliaryDataInfoAtIndex(0, kCGImageAuxiliaryDataTypeDisparity);
  metadata.auxiliaryDataInfoDepth_ =
      source->auxiliaryDataInfoAtIndex(0, kCGImageAuxiliaryDataTypeDepth);
  metadata.auxiliaryDataInfoMatte_ =
      source->auxiliaryDataInfoAtIndex(0, kCGImageAuxiliaryDataTypePortraitEffectsMatte);
  metadata.blocks_ = source->metadataBlocksAtIndex(0);
  return metadata;
}

const std::optional<Dictionary>& KvImageMetadata::properties() const& { return properties_; }

void KvImageMetadata::setProperties(std::optional<Dictionary> properties) {
  properties_ = std::move(properties);
  blocks_ = nullptr;  // They describe the old properties.
}

const std::optional<Dictionary>& KvImageMetadata::auxiliaryDataInfoDepth() const& {
  return auxiliaryDataInfoDepth_;
}

void KvImageMetadata::setAuxiliaryDataInfoDepth(std::optional<Dictionary> info) {
  auxiliaryDataInfoDepth_ = std::move(info);
}

const std::optional<Dictionary>& KvImageMetadata::auxiliaryDataInfoDisparity() const& {
  return auxiliaryDataInfoDisparity_;
}

void KvImageMetadata::setAuxiliaryDataInfoDisparity(std::optional<Dictionary> info) {
  auxiliaryDataInfoDisparity_ = std::move(info);
}

const std::optional<Dictionary>& KvImageMetadata::auxiliaryDataInfoMatte() const& {
  return auxiliaryDataInfoMatte_;
}

void KvImageMetadata::setAuxiliaryDataInfoMatte(std::optional<Dictionary> info) {
  auxiliaryDataInfoMatte_ = std::move(info);
}

const std::optional<std::string>& KvImageMetadata::videoCodecName() const& {
  return videoCodecName_;
}

void KvImageMetadata::setVideoCodecName(std::optional<std::string> name) {
  videoCodecName_ = std::move(name);
}

void KvImageMetadata::addImage(const std::optional<CGImage>& image, CGImageDestination* destination,
                               std::optional<double> quality) {
  if (!image || !destination) return;
  if (quality) edited().set(kCGImageDestinationLossyCompressionQuality, *quality);
  if (properties_ && !properties_->empty()) destination->addImage(*image, *properties_, blocks_);

  for (const auto& [type, info] :
       {std::pair{kCGImageAuxiliaryDataTypeDepth, &auxiliaryDataInfoDepth_},
        {kCGImageAuxiliaryDataTypeDisparity, &auxiliaryDataInfoDisparity_},
        {kCGImageAuxiliaryDataTypePortraitEffectsMatte, &auxiliaryDataInfoMatte_}}) {
    if (*info) destination->addAuxiliaryDataInfo(type, **info);
  }
}

Dictionary& KvImageMetadata::edited() {
  if (!properties_) properties_.emplace();
  return *properties_;
}

Dictionary& KvImageMetadata::edited(std::string_view dictionaryKey) {
  return edited().subdictionary(dictionaryKey);
}

}  // namespace FrameworkUtility
