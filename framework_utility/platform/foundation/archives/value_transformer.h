#pragma once

#include <framework_utility/platform/foundation/archives/coding.h>
#include <framework_utility/platform/foundation/values/value.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace FrameworkUtility {

/// Turns values of one kind into another and perhaps back. A persistent store names the transformer
/// that its values went through, and finds it by that name.
///
/// Thread: any.
class NSValueTransformer {
 public:
  NSValueTransformer() = default;
  NSValueTransformer(const NSValueTransformer&) = delete;
  NSValueTransformer& operator=(const NSValueTransformer&) = delete;
  virtual ~NSValueTransformer();

  /// Absent when there is nothing to make of `value`.
  /// Selector: transformedValue:
  virtual std::optional<Value> transformedValue(const std::optional<Value>& value) const = 0;
  /// Selector: allowsReverseTransformation
  virtual bool allowsReverseTransformation() const = 0;
  /// Absent where reversing is not allowed.
  /// Selector: reverseTransformedValue:
  virtual std::optional<Value> reverseTransformedValue(const std::optional<Value>& value) const;

  /// Replaces the one of that name; null removes it.
  /// Selector: setValueTransformer:forName:
  static void setValueTransformer(std::shared_ptr<const NSValueTransformer> transformer,
                                  std::string_view name);
  /// The transformer of that name; else one of the class of that name, which is made and keeps the
  /// name from then on; else null.
  /// Selector: valueTransformerForName:
  static std::shared_ptr<const NSValueTransformer> valueTransformerForName(std::string_view name);
  /// In alphabetical order.
  /// Selector: valueTransformerNames
  static std::vector<std::string> valueTransformerNames();

  /// Makes a class known by its name.
  static void registerClass(std::string_view name,
                            std::function<std::shared_ptr<const NSValueTransformer>()> make);
};

/// The name under which a plain `NSSecureUnarchiveFromDataTransformer` is found.
inline constexpr std::string_view NSSecureUnarchiveFromDataTransformerName =
    "NSSecureUnarchiveFromData";

/// Makes of a secure archive the object in it, and back. Whatever fails gives nothing; no error is
/// reported.
class NSSecureUnarchiveFromDataTransformer : public NSValueTransformer {
 public:
  /// The classes of the archive's objects: at first those of lists, dictionaries, sets, texts,
  /// numbers, dates, data, URLs, UUIDs and the null value.
  /// Selector: allowedTopLevelClasses
  virtual ClassNames allowedTopLevelClasses() const;

  std::optional<Value> transformedValue(const std::optional<Value>& value) const override;
  bool allowsReverseTransformation() const override;  ///< True.
  std::optional<Value> reverseTransformedValue(const std::optional<Value>& value) const override;
};

}  // namespace FrameworkUtility
