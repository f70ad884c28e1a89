// Archives of colours.

#include <framework_utility/color/color.h>
#include <framework_utility/color/hsl.h>
#include <framework_utility/errors/archive_error.h>
#include <framework_utility/errors/fail.h>
#include <framework_utility/platform/foundation/archives/keyed_archiver.h>
#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>

#include <atomic>

namespace FrameworkUtility {

namespace {

std::atomic<bool> isSecure = true;

}  // namespace

std::string_view KvColor::className() { return "FrameworkUtility.KvColor"; }

bool KvColor::supportsSecureCoding() { return isSecure; }

void KvColor::setSupportsSecureCoding(bool supported) { isSecure = supported; }

ClassNames KvColor::unarchivedObjectOfClasses() { return {className(), "NSNumber"}; }

void KvColor::encodeWithCoder(NSKeyedArchiver& coder) const {
  // Single precision, as archives have had it from the first, although many colours come back with
  // another identity.
  coder.encodeFloat(static_cast<float>(red), "R");
  coder.encodeFloat(static_cast<float>(green), "G");
  coder.encodeFloat(static_cast<float>(blue), "B");
  coder.encodeFloat(static_cast<float>(alpha), "A");
}

std::optional<KvColor> KvColor::withCoder(NSKeyedUnarchiver& coder) {
  const auto has = [&coder](std::string_view key) { return coder.containsValueForKey(key); };
  const auto number = [&coder](std::string_view key) -> double {
    return coder.decodeFloatForKey(key);
  };
  KvColor color = blackColor();
  if (has("R") && has("G") && has("B")) {
    color.red = number("R");
    color.green = number("G");
    color.blue = number("B");
  } else if (has("H") && has("S") && has("L")) {  // as they were written once
    color.setHueSaturationLightness({number("H"), number("S"), number("L")});
  } else {
    return std::nullopt;
  }
  if (has("A")) color.alpha = number("A");
  return color;
}

std::optional<Data> KvColor::archivedData(Error* error) const {
  Error cause;
  std::optional<Data> data =
      NSKeyedArchiver::archivedDataWithRootObject(boxed(*this), SecureCoding::required, &cause);
  if (!data) return detail::fail(error, ArchiveError::archivingFailed, cause);
  return data;
}

std::optional<KvColor> KvColor::unarchivedData(const std::optional<Data>& data, Error* error) {
  if (!data) return detail::fail(error, ArchiveError::dataIsNil);
  NSKeyedUnarchiver coder(unarchivedObjectOfClasses(), *data);
  const std::optional<Value> root = coder.decodeTopLevelObjectForKey(NSKeyedArchiveRootObjectKey);
  if (coder.error()) return detail::fail(error, ArchiveError::unarchivingFailed, *coder.error());
  const auto* color = root ? unboxed<KvColor>(*root) : nullptr;
  if (!color) return detail::fail(error, ArchiveError::colorIsNil);
  return *color;
}

}  // namespace FrameworkUtility
