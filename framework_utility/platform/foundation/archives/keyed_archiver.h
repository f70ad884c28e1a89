#pragma once

#include <framework_utility/platform/foundation/archives/coder_error.h>
#include <framework_utility/platform/foundation/archives/coding.h>
#include <framework_utility/platform/foundation/values/data.h>
#include <framework_utility/platform/foundation/values/error.h>
#include <framework_utility/platform/foundation/values/value.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace FrameworkUtility {

/// The key of the object that an archive is about.
inline constexpr std::string_view NSKeyedArchiveRootObjectKey = "root";

/// Writes a graph of objects as data, in the platform's keyed archives.
///
/// Numbers of `encodeFloat` and its like stand in the object that encodes them; everything else is
/// an object of its own. An object that is met again is written once. Texts, numbers, data, dates,
/// URLs, arrays, dictionaries and the null value are archived as the platform's own; other objects
/// need the role `NSCoding` and a registered class. A graph that reaches itself is refused.
///
/// After a failure nothing more is written; the first one is kept.
///
/// Thread: one at a time.
class NSKeyedArchiver {
 public:
  /// Selector: initRequiringSecureCoding:
  explicit NSKeyedArchiver(SecureCoding secureCoding, const ArchiveLimits& limits = {});
  NSKeyedArchiver(const NSKeyedArchiver&) = delete;
  NSKeyedArchiver& operator=(const NSKeyedArchiver&) = delete;
  ~NSKeyedArchiver();

  /// An archive of one object. Fails with `CoderError::invalidValue`.
  /// Selector: archivedDataWithRootObject:requiringSecureCoding:error:
  [[nodiscard]] static std::optional<Data> archivedDataWithRootObject(const Value& object,
                                                                      SecureCoding secureCoding,
                                                                      Error* error = nullptr);

  // A key that was written before is replaced.

  void encodeBool(bool value, std::string_view key);           ///< Selector: encodeBool:forKey:
  void encodeInt32(std::int32_t value, std::string_view key);  ///< Selector: encodeInt32:forKey:
  void encodeInt64(std::int64_t value, std::string_view key);  ///< Selector: encodeInt64:forKey:
  /// In single precision.
  /// Selector: encodeFloat:forKey:
  void encodeFloat(float value, std::string_view key);
  void encodeDouble(double value, std::string_view key);  ///< Selector: encodeDouble:forKey:
  /// Selector: encodeBytes:length:forKey:
  void encodeBytes(std::span<const std::byte> bytes, std::string_view key);
  /// Absent is written too: the key is there, and its object is nil.
  /// Selector: encodeObject:forKey:
  void encodeObject(const std::optional<Value>& object, std::string_view key);
  /// Objects side by side under one key, as the platform's containers hold theirs.
  void encodeObjects(const std::vector<const Value*>& objects, std::string_view key);

  bool requiresSecureCoding() const;  ///< Selector: requiresSecureCoding
  /// Ends the archive: what an object calls that cannot be written.
  /// Selector: failWithError:
  void failWithError(const Error& error);
  /// Ends the archive and gives it: what is encoded afterwards has no effect. Fails with the first
  /// failure. Selector: encodedData
  [[nodiscard]] std::optional<Data> encodedData(Error* error = nullptr);

 private:
  class Archive;
  std::unique_ptr<Archive> archive_;
};

}  // namespace FrameworkUtility
