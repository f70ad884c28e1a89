#pragma once

#include <framework_utility/platform/foundation/archives/coder_error.h>
#include <framework_utility/platform/foundation/archives/coding.h>
#include <framework_utility/platform/foundation/archives/keyed_archiver.h>
#include <framework_utility/platform/foundation/values/data.h>
#include <framework_utility/platform/foundation/values/error.h>
#include <framework_utility/platform/foundation/values/value.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

namespace FrameworkUtility {

namespace detail {
class ArchiveDecoder;
}  // namespace detail

/// Reads what `NSKeyedArchiver` writes, and what the platform's own does, as binary or as XML
/// property list.
///
/// With a list of classes decoding is secure: only objects of these classes and their subclasses
/// are made, and only of classes that support secure coding. The list counts for every object
/// below, so a list's class and its elements' stand in it both. Texts and numbers below an allowed
/// object are let pass in any case.
///
/// A missing key, or one whose object is nil, gives nothing, and is no failure. After a failure
/// every further call gives nothing; the first one is kept.
///
/// Thread: one at a time.
class NSKeyedUnarchiver {
 public:
  /// Reads `data` once: it may go afterwards. Bytes that are no archive show in `error()`.
  /// Selector: initForReadingFromData:error:
  explicit NSKeyedUnarchiver(std::span<const std::byte> data, const ArchiveLimits& limits = {});
  /// Requires secure coding; `classes` is what decoding without a list of its own allows.
  NSKeyedUnarchiver(const ClassNames& classes, std::span<const std::byte> data,
                    const ArchiveLimits& limits = {});
  NSKeyedUnarchiver(const NSKeyedUnarchiver&) = delete;
  NSKeyedUnarchiver& operator=(const NSKeyedUnarchiver&) = delete;
  ~NSKeyedUnarchiver();

  /// The root, decoded securely. Fails with `CoderError::readCorrupt`, with
  /// `CoderError::valueNotFound` when there is no root or it is nil, and with what an object failed
  /// with.
  /// Selector: unarchivedObjectOfClasses:fromData:error:
  [[nodiscard]] static std::optional<Value> unarchivedObjectOfClasses(
      const ClassNames& classes, std::span<const std::byte> data, Error* error = nullptr);
  /// The root, of any registered class: for data that the app itself has written. Fails the same.
  /// Selector: unarchiveTopLevelObjectWithData:error:
  [[nodiscard]] static std::optional<Value> unarchiveTopLevelObjectWithData(
      std::span<const std::byte> data, Error* error = nullptr);

  /// Whether the key is there, be its object nil.
  /// Selector: containsValueForKey:
  bool containsValueForKey(std::string_view key) const;

  // A number of another kind is a failure: an integer where a floating one is asked for, or the
  // reverse. Missing ones are false and 0.

  bool decodeBoolForKey(std::string_view key);           ///< Selector: decodeBoolForKey:
  std::int32_t decodeInt32ForKey(std::string_view key);  ///< Selector: decodeInt32ForKey:
  std::int64_t decodeInt64ForKey(std::string_view key);  ///< Selector: decodeInt64ForKey:
  float decodeFloatForKey(std::string_view key);         ///< Selector: decodeFloatForKey:
  double decodeDoubleForKey(std::string_view key);       ///< Selector: decodeDoubleForKey:
  /// Selector: decodeBytesForKey:returnedLength:
  std::optional<Data> decodeBytesForKey(std::string_view key);
  /// The text, number, data or date that stands in the object itself. Absent for anything else.
  std::optional<Value> decodeInlineValueForKey(std::string_view key);
  /// Selector: decodeObjectForKey:
  std::optional<Value> decodeObjectForKey(std::string_view key);
  /// Where secure coding is not required, the list does not count.
  /// Selector: decodeObjectOfClasses:forKey:
  std::optional<Value> decodeObjectOfClasses(const ClassNames& classes, std::string_view key);
  /// Objects side by side under one key, as the platform's containers hold theirs. A nil one is a
  /// failure. Absent when the key is missing.
  std::optional<Array> decodeObjectsForKey(std::string_view key);
  /// `decodeObjectForKey`, but a missing key is the failure `CoderError::valueNotFound`.
  /// Selector: decodeTopLevelObjectForKey:error:
  std::optional<Value> decodeTopLevelObjectForKey(std::string_view key);

  bool requiresSecureCoding() const;  ///< Selector: requiresSecureCoding
  /// Ends the decoding: what an object calls that finds its parts to be wrong.
  /// Selector: failWithError:
  void failWithError(const Error& error);
  /// The first failure; absent while there is none.
  /// Selector: error
  const std::optional<Error>& error() const;

 private:
  std::unique_ptr<detail::ArchiveDecoder> archive_;
};

}  // namespace FrameworkUtility
