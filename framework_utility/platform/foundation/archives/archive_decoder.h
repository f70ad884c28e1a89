#pragma once

#include <framework_utility/platform/foundation/archives/archive_contents.h>
#include <framework_utility/platform/foundation/archives/coding.h>
#include <framework_utility/platform/foundation/values/error.h>
#include <framework_utility/platform/foundation/values/expansion_budget.h>
#include <framework_utility/platform/foundation/values/value.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace FrameworkUtility::detail {

/// Decodes the objects of a keyed archive, those of a secure one by their classes, within what the
/// archive may expand to. After a failure every further call gives nothing; the first one is kept.
class ArchiveDecoder {
 public:
  /// `coder` is what objects are decoded with. With `classes` decoding is secure.
  ArchiveDecoder(NSKeyedUnarchiver& coder, std::optional<ClassNames> classes,
                 std::span<const std::byte> data, const ArchiveLimits& limits);

  bool isSecure() const { return classes_.has_value(); }
  const std::optional<Error>& error() const { return error_; }
  void fail(const Error& error);
  void failAt(std::string_view key, std::string_view reason);
  void failWithoutValue(std::string_view key);

  // What is asked of the object that is being decoded, at first the archive's top.

  bool contains(std::string_view key) { return part(key) != nullptr; }
  /// As it stands there; null when it is missing.
  const Value* part(std::string_view key);
  /// A text, number, data or date that stands in the object itself.
  std::optional<Value> inlineValue(std::string_view key);
  enum class Kind { whole, floating };
  /// One of the other kind is a failure.
  const Number* number(std::string_view key, Kind kind);
  std::optional<Value> object(std::string_view key);
  /// With a list of classes that counts for all below it.
  std::optional<Value> object(const ClassNames& classes, std::string_view key);
  std::optional<Array> objects(std::string_view key);

 private:
  std::span<const Value> table() const { return contents_->objects; }
  void failBecause(const std::string& reason);
  /// Whether what is still to be made goes on.
  bool isWithin(bool isSpent);

  /// The part of the current object under a key as it stands there. Objects ask for their parts in
  /// the order in which they wrote them, so the search begins at the part found before. An object
  /// may have any number of parts and be asked any number of times: looking costs.
  const Value* find(std::string_view key);
  std::optional<Value> copied(const Value& leaf);
  std::optional<Value> objectAt(const Value& reference, std::string_view key);
  std::optional<Value> made(const Dictionary& parts, std::uint64_t number, std::string_view key);
  std::optional<Value> madeOfCurrent(std::uint64_t number, std::string_view key);

  /// The class of the object with the current parts.
  const CodingClass* classOfCurrent(std::string_view key);
  const CodingClass* classOfRecord(std::uint64_t number, std::string_view key);
  bool isAllowed(const CodingClass& codingClass, std::string_view key);

  NSKeyedUnarchiver& coder_;
  std::optional<ClassNames> classes_;        // what is allowed now; absent where all is
  std::vector<const CodingClass*> allowed_;  // those of which that is known
  std::size_t depth_;
  ExpansionBudget budget_;
  std::optional<ArchiveContents> contents_;
  const Dictionary* current_ = nullptr;  // the parts of the object that is being decoded
  std::size_t next_ = 0;                 // that one of them that was found last
  std::size_t level_ = 0;
  std::vector<bool> isOpen_;                       // whether the object is being decoded
  std::unordered_map<std::uint64_t, Value> made_;  // those with identity
  std::unordered_map<std::uint64_t, const CodingClass*> classesOfRecords_;
  std::optional<Error> error_;
};

}  // namespace FrameworkUtility::detail
