#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>

#include <framework_utility/platform/foundation/archives/archive_decoder.h>
#include <framework_utility/platform/foundation/archives/coder_failure.h>

#include <cmath>
#include <limits>
#include <utility>

namespace FrameworkUtility {

using namespace detail;

NSKeyedUnarchiver::NSKeyedUnarchiver(std::span<const std::byte> data, const ArchiveLimits& limits)
    : archive_(std::make_unique<ArchiveDecoder>(*this, std::nullopt, data, limits)) {}

NSKeyedUnarchiver::NSKeyedUnarchiver(const ClassNames& classes, std::span<const std::byte> data,
                                     const ArchiveLimits& limits)
    : archive_(std::make_unique<ArchiveDecoder>(*this, classes, data, limits)) {}

NSKeyedUnarchiver::~NSKeyedUnarchiver() = default;

namespace {

std::optional<Value> rootOf(NSKeyedUnarchiver& coder, Error* error) {
  std::optional<Value> root = coder.decodeTopLevelObjectForKey(NSKeyedArchiveRootObjectKey);
  if (!root && error) {
    *error = coder.error().value_or(coderError(CoderError::valueNotFound, "the root is nil"));
  }
  return root;
}

}  // namespace

std::optional<Value> NSKeyedUnarchiver::unarchivedObjectOfClasses(const ClassNames& classes,
                                                                  std::span<const std::byte> data,
                                                                  Error* error) {
  NSKeyedUnarchiver coder(classes, data);
  return rootOf(coder, error);
}

std::optional<Value> NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(
    std::span<const std::byte> data, Error* error) {
  NSKeyedUnarchiver coder(data);
  return rootOf(coder, error);
}

bool NSKeyedUnarchiver::containsValueForKey(std::string_view key) const {
  return archive_->contains(key);
}

bool NSKeyedUnarchiver::decodeBoolForKey(std::string_view key) {
  const Number* number = archive_->number(key, ArchiveDecoder::Kind::whole);
  return number && number->boolValue();
}

std::int32_t NSKeyedUnarchiver::decodeInt32ForKey(std::string_view key) {
  const std::int64_t wide = decodeInt64ForKey(key);
  if (std::in_range<std::int32_t>(wide)) return static_cast<std::int32_t>(wide);
  archive_->failAt(key, "does not fit in 32 bits");
  return 0;
}

std::int64_t NSKeyedUnarchiver::decodeInt64ForKey(std::string_view key) {
  const Number* number = archive_->number(key, ArchiveDecoder::Kind::whole);
  if (!number) return 0;
  if (number->kind() != Number::Kind::unsignedInteger ||
      std::in_range<std::int64_t>(number->unsignedIntegerValue())) {
    return number->integerValue();
  }
  archive_->failAt(key, "does not fit in 64 bits with a sign");
  return 0;
}

float NSKeyedUnarchiver::decodeFloatForKey(std::string_view key) {
  const double wide = decodeDoubleForKey(key);
  if (!std::isfinite(wide) || std::abs(wide) <= std::numeric_limits<float>::max()) {
    return static_cast<float>(wide);
  }
  archive_->failAt(key, "does not fit in single precision");
  return 0;
}

double NSKeyedUnarchiver::decodeDoubleForKey(std::string_view key) {
  const Number* number = archive_->number(key, ArchiveDecoder::Kind::floating);
  return number ? number->doubleValue() : 0;
}

std::optional<Value> NSKeyedUnarchiver::decodeInlineValueForKey(std::string_view key) {
  return archive_->inlineValue(key);
}

std::optional<Data> NSKeyedUnarchiver::decodeBytesForKey(std::string_view key) {
  const Value* part = archive_->part(key);
  if (!part) return std::nullopt;
  if (const auto* data = part->as<Data>()) return *data;
  archive_->failAt(key, "is not bytes");
  return std::nullopt;
}

std::optional<Value> NSKeyedUnarchiver::decodeObjectForKey(std::string_view key) {
  return archive_->object(key);
}

std::optional<Value> NSKeyedUnarchiver::decodeObjectOfClasses(const ClassNames& classes,
                                                              std::string_view key) {
  return archive_->object(classes, key);
}

std::optional<Array> NSKeyedUnarchiver::decodeObjectsForKey(std::string_view key) {
  return archive_->objects(key);
}

std::optional<Value> NSKeyedUnarchiver::decodeTopLevelObjectForKey(std::string_view key) {
  if (!archive_->contains(key) && !error()) archive_->failWithoutValue(key);
  return archive_->object(key);
}

bool NSKeyedUnarchiver::requiresSecureCoding() const { return archive_->isSecure(); }
void NSKeyedUnarchiver::failWithError(const Error& error) { archive_->fail(error); }
const std::optional<Error>& NSKeyedUnarchiver::error() const { return archive_->error(); }

}  // namespace FrameworkUtility
