#pragma once

#include <framework_utility/color/color.h>
#include <framework_utility/platform/foundation/archives/value_transformer.h>
#include <framework_utility/platform/foundation/values/value.h>

#include <optional>
#include <vector>

namespace FrameworkUtility {

/// Turns a list of colours into the data that a persistent store keeps, a secure archive, and back.
/// Whatever fails gives nothing; no error is reported.
///
///     const auto transformer = NSValueTransformer::valueTransformerForName("KvColorTransformer");
///     const std::optional<Value> data = transformer->reverseTransformedValue(boxedColors(colors));
///
/// Thread: any.
class KvColorTransformer final : public NSSecureUnarchiveFromDataTransformer {
 public:
  /// Makes the store find it as "KvColorTransformer".
  /// Selector: registerTransformer
  static void registerTransformer();

  /// Lists, numbers and colours, in this order.
  /// Selector: allowedTopLevelClasses
  ClassNames allowedTopLevelClasses() const override;

  /// The boxed colours of an archive; absent unless it holds a list of them and nothing else.
  /// Selector: transformedValue:
  std::optional<Value> transformedValue(const std::optional<Value>& value) const override;
  /// The archive of a list of boxed colours; absent for any other value.
  /// Selector: reverseTransformedValue:
  std::optional<Value> reverseTransformedValue(const std::optional<Value>& value) const override;
};

/// A list of colours as values hold it.
Value boxedColors(const std::vector<KvColor>& colors);

/// The colours of such a list; absent for anything else.
std::optional<std::vector<KvColor>> unboxedColors(const std::optional<Value>& list);

}  // namespace FrameworkUtility
