#include <framework_utility/platform/imageio/metadata/xmp/xmp.h>
#include <framework_utility/platform/imageio/metadata/xmp/xmp_extension.h>
#include <framework_utility/platform/imageio/metadata/xmp/xmp_packet.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

using namespace FrameworkUtility;
using namespace FrameworkUtility::detail;

static std::optional<std::size_t> count(const Data& packet) {
  MetadataBudget budget;
  const auto found =
      parseXmpPacket({reinterpret_cast<const char*>(packet.data()), packet.size()}, budget);
  return found ? std::optional(found->size()) : std::nullopt;
}

/// A packet in which everything was changed stays as it is when nothing more is. One that is split
/// loses no property, nor when it is joined again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span packet = std::as_bytes(std::span(data, size));
  MetadataBudget budget;
  const Dictionary before = readXmp(packet, {}, budget);

  Dictionary after;
  for (const auto& [name, entries] : before) {
    for (const auto& [key, value] : *entries.as<Dictionary>()) {
      after.subdictionary(name).set(key, value.as<std::string>() ? Value("<&>'\"\xFF\n") : value);
    }
  }
  // What continues IPTC is not read, but follows a change of its entry.
  after.subdictionary("{IPTC}").set("City", "<\xC3\x9Clm>");
  after.subdictionary("{IPTC}").set("Keywords", Value(Array{"lake", "dusk"}));
  const PixelFacts pixels{.width = 4032, .height = 3024};
  const std::vector<std::byte> changed = mergeXmp(packet, before, after, pixels);
  const std::vector<std::byte> again = mergeXmp(changed, after, after, pixels);
  if (again != changed) std::abort();

  const Data whole(packet);
  if (const std::optional<XmpParts> parts = splitXmp(whole, size / 2)) {
    const Data joined = joinedXmp(parts->packet, parts->extension);
    if (count(whole) && (*count(parts->packet) + *count(parts->extension) != *count(whole) ||
                         *count(joined) + !xmpExtensionName(whole).empty() < *count(whole))) {
      std::abort();
    }
  }
  return 0;
}
