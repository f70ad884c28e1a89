// Reads an EXIF block, merges what it read back unchanged, then with a change, and reads again.

#include <framework_utility/platform/imageio/metadata/exif/exif.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string_view>
#include <vector>

namespace {

using namespace FrameworkUtility;

Dictionary propertiesOf(std::span<const std::byte> block) {
  Dictionary properties;
  detail::MetadataBudget budget;
  detail::readExif(block, properties, budget);
  return properties;
}

void require(bool condition) {
  if (!condition) std::abort();
}

/// Whether everything in `part` is in `whole`. Records that share bytes by the hundred may vanish
/// from a merged block; none may come to say something else. A resolution whose unit vanished is in
/// inches.
bool isPart(const Dictionary& part, const Dictionary& whole) {
  for (const auto& [key, value] : part) {
    if (key == KeyView("DPIWidth") || key == KeyView("DPIHeight")) continue;
    const Value* other = whole.find(key);
    if (!other) return false;
    const Dictionary* inner = value.as<Dictionary>();
    const Dictionary* outer = other->as<Dictionary>();
    if (inner && outer ? !isPart(*inner, *outer) : value != *other) return false;
  }
  return true;
}

/// One entry of one dictionary, chosen by the first byte, is removed or becomes something else.
void change(Dictionary& properties, std::uint8_t choice) {
  constexpr std::string_view keys[] = {"{TIFF}", "{Exif}", "{GPS}", "{MakerApple}"};
  Dictionary& chosen = properties.subdictionary(keys[choice % 4]);
  const std::size_t index = choice / 4 % 16;
  if (index >= chosen.size()) {
    chosen.set("Software", "A name that fits no record");
    chosen.set("UserComment", "\xE2\x82\xAC");
    chosen.set("Latitude", choice / 3.0);
    chosen.set("Altitude", -1.0 * choice);
    chosen.set("17", "An identifier");
    return;
  }
  const Key key = chosen.begin()[index].key;
  if (choice < 128) {
    chosen.remove(key);
  } else if (chosen.find(key)->as<std::string>()) {
    chosen.set(key, "A text that is longer than what stood here before, most of the time");
  } else {
    chosen.set(key, choice / 7.0);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto block = std::as_bytes(std::span(data, size));
  const Dictionary before = propertiesOf(block);

  const std::vector<std::byte> unchanged = detail::mergeExif(block, before, {});
  require(isPart(propertiesOf(unchanged), before));

  Dictionary properties = before;
  change(properties, size > 0 ? data[size - 1] : 0);
  const std::vector<std::byte> changed = detail::mergeExif(block, properties, {640, 480});
  const Dictionary after = propertiesOf(changed);
  require(isPart(propertiesOf(detail::mergeExif(changed, after, {640, 480})), after));
  return 0;
}
