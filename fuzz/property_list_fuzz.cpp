#include <framework_utility/platform/foundation/property_lists/property_list.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace FrameworkUtility;

/// What is read and can be written, which null values cannot, must be readable again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::optional<Value> value = propertyListWithData(std::as_bytes(std::span(data, size)));
  if (!value) return 0;
  const std::optional<Data> written = dataWithPropertyList(*value);
  if (!written) return 0;
  // The writer shares texts, so that its list may expand more than the one that was read.
  const std::optional<Value> again =
      propertyListWithData(*written, {.expansion = PropertyListLimits().expansion * 64});
  if (!again) std::abort();
  return 0;
}
