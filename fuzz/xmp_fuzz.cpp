#include <framework_utility/platform/imageio/metadata_codec.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

using namespace FrameworkUtility;
using namespace FrameworkUtility::detail;

// A packet in which everything was changed stays as it is when nothing more is.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span packet = std::as_bytes(std::span(data, size));
  Dictionary before;
  readXmp(packet, before);

  Dictionary after;
  for (const auto& [name, entries] : before)
    for (const auto& [key, value] : *entries.as<Dictionary>())
      after.subdictionary(name).set(key, value.as<std::string>() ? Value("<&>'\"\xFF\n") : value);
  // What continues IPTC is not read, but follows a change of its entry.
  after.subdictionary("{IPTC}").set("City", "<\xC3\x9Clm>");
  after.subdictionary("{IPTC}").set("Keywords", Value(Array{"lake", "dusk"}));
  const PixelFacts pixels{.width = 4032, .height = 3024};
  const std::vector<std::byte> changed = mergeXmp(packet, before, after, pixels);
  const std::vector<std::byte> again = mergeXmp(changed, after, after, pixels);
  if (again != changed) std::abort();
  return 0;
}
