#include <framework_utility/platform/imageio/metadata/values/metadata_budget.h>

#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <algorithm>

namespace FrameworkUtility::detail {

void MetadataBudget::leaveOut(std::string_view name) {
  if (std::find(leftOut_.begin(), leftOut_.end(), name) == leftOut_.end()) leftOut_.push_back(name);
}

void MetadataBudget::tell(Dictionary& properties) const {
  if (leftOut_.empty()) return;
  const Array* told = properties.get<Array>(kKvImagePropertyMetadataLeftOut);
  Array names = told ? *told : Array();
  for (const std::string_view name : leftOut_) {
    if (std::find(names.begin(), names.end(), Value(name)) == names.end()) names.emplace_back(name);
  }
  properties.set(kKvImagePropertyMetadataLeftOut, Value(std::move(names)));
}

}  // namespace FrameworkUtility::detail
