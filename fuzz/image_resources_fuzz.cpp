#include <framework_utility/platform/imageio/metadata/iptc/image_resources.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

using namespace FrameworkUtility;
using namespace FrameworkUtility::detail;

/// What is read is kept when it is written again, and a change does not hide what follows it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span resources = std::as_bytes(std::span(data, size));
  Dictionary before;
  MetadataBudget budget;
  readImageResources(resources, before, budget);

  Dictionary after = before;
  Dictionary& iptc = after.subdictionary("{IPTC}");
  iptc.set("City", "\xC3\x9Clm");
  iptc.set("Keywords", Value(Array{"lake", "dusk"}));
  iptc.remove("ObjectName");
  const std::vector<std::byte> changed = mergeImageResources(resources, after);
  Dictionary again;
  MetadataBudget budgetAgain;
  readImageResources(changed, again, budgetAgain);
  if (again != after) std::abort();
  if (mergeImageResources(changed, after) != changed) std::abort();
  return 0;
}
