#include <framework_utility/platform/imageio/metadata_codec.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

using namespace FrameworkUtility;
using namespace FrameworkUtility::detail;

// A packet is read, kept when nothing changes, and still read alike after everything changed.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span packet = std::as_bytes(std::span(data, size));
  Dictionary before;
  readXmp(packet, before);

  Dictionary after;
  for (const auto& [name, entries] : before)
    for (const auto& [key, value] : *entries.as<Dictionary>())
      after.subdictionary(name).set(key, value.as<std::string>() ? Value("<&>'\"\xFF\n") : value);
  const PixelFacts pixels{.width = 4032, .height = 3024};
  const std::vector<std::byte> changed = mergeXmp(packet, before, after, pixels);
  const std::vector<std::byte> again = mergeXmp(changed, after, after, pixels);
  if (again != changed) std::abort();
  return 0;
}
