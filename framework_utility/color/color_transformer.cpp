#include <framework_utility/color/color_transformer.h>

#include <memory>
#include <utility>

namespace FrameworkUtility {

void KvColorTransformer::registerTransformer() {
  setValueTransformer(std::make_shared<const KvColorTransformer>(), "KvColorTransformer");
}

ClassNames KvColorTransformer::allowedTopLevelClasses() const {
  return {"NSArray", "NSNumber", KvColor::className()};
}

std::optional<Value> KvColorTransformer::transformedValue(const std::optional<Value>& value) const {
  std::optional<Value> list = NSSecureUnarchiveFromDataTransformer::transformedValue(value);
  return unboxedColors(list) ? list : std::nullopt;
}

std::optional<Value> KvColorTransformer::reverseTransformedValue(
    const std::optional<Value>& value) const {
  if (!unboxedColors(value)) return std::nullopt;
  return NSSecureUnarchiveFromDataTransformer::reverseTransformedValue(value);
}

Value boxedColors(const std::vector<KvColor>& colors) {
  Array list;
  list.reserve(colors.size());
  for (const KvColor& color : colors) list.push_back(boxed(color));
  return Value(std::move(list));
}

std::optional<std::vector<KvColor>> unboxedColors(const std::optional<Value>& list) {
  const auto* elements = list ? list->as<Array>() : nullptr;
  if (!elements) return std::nullopt;
  std::vector<KvColor> colors;
  colors.reserve(elements->size());
  for (const Value& element : *elements) {
    const auto* color = unboxed<KvColor>(element);
    if (!color) return std::nullopt;
    colors.push_back(*color);
  }
  return colors;
}

}  // namespace FrameworkUtility
