// Archives of metadata.

#include <framework_utility/imageio/image_metadata.h>
#include <framework_utility/platform/foundation/archives/keyed_archiver.h>
#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>

#include <atomic>
#include <utility>

namespace FrameworkUtility {
namespace {

constexpr std::string_view propertiesKey = "properties";
constexpr std::string_view depthKey = "auxiliaryDataInfoDepth";
constexpr std::string_view matteKey = "auxiliaryDataInfoMatte";
constexpr std::string_view disparityKey = "auxiliaryDataInfoDisparity";
constexpr std::string_view videoCodecNameKey = "videoCodecName";

std::atomic<bool> isSecure = true;

template <class T>
void encode(NSKeyedArchiver& coder, const std::optional<T>& field, std::string_view key) {
  if (field) coder.encodeObject(Value(*field), key);
}

/// Absent when the key is missing or holds another type.
template <class T>
std::optional<T> decode(NSKeyedUnarchiver& coder, std::string_view key) {
  std::optional<Value> object = coder.decodeObjectForKey(key);
  T* field = object ? object->as<T>() : nullptr;
  return field ? std::optional<T>(std::move(*field)) : std::nullopt;
}

}  // namespace

std::string_view KvImageMetadata::className() { return "FrameworkUtility.KvImageMetadata"; }

bool KvImageMetadata::supportsSecureCoding() { return isSecure; }

void KvImageMetadata::setSupportsSecureCoding(bool supported) { isSecure = supported; }

ClassNames KvImageMetadata::unarchivedObjectOfClasses() {
  return {className(), "NSArray", "NSDictionary", "NSString", "NSValue",
          "NSNumber",  "NSNull",  "NSURL",        "NSData",   "NSDate"};
}

void KvImageMetadata::encodeWithCoder(NSKeyedArchiver& coder) const {
  encode(coder, properties_, propertiesKey);
  encode(coder, auxiliaryDataInfoDepth_, depthKey);
  encode(coder, auxiliaryDataInfoMatte_, matteKey);
  encode(coder, auxiliaryDataInfoDisparity_, disparityKey);
  encode(coder, videoCodecName_, videoCodecNameKey);
}

KvImageMetadata KvImageMetadata::withCoder(NSKeyedUnarchiver& coder) {
  KvImageMetadata metadata;
  metadata.properties_ = decode<Dictionary>(coder, propertiesKey);
  metadata.auxiliaryDataInfoDepth_ = decode<Dictionary>(coder, depthKey);
  metadata.auxiliaryDataInfoMatte_ = decode<Dictionary>(coder, matteKey);
  metadata.auxiliaryDataInfoDisparity_ = decode<Dictionary>(coder, disparityKey);
  metadata.videoCodecName_ = decode<std::string>(coder, videoCodecNameKey);
  return metadata;
}

}  // namespace FrameworkUtility
