#include <framework_utility/platform/foundation/values/data.h>

#include <algorithm>
#include <utility>

namespace FrameworkUtility {

Data::Data(std::span<const std::byte> bytes) {
  if (bytes.empty()) return;
  const auto copy = std::make_shared_for_overwrite<std::byte[]>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), copy.get());
  bytes_ = {copy.get(), bytes.size()};
  owner_ = copy;
}

Data::Data(std::vector<std::byte>&& bytes) {
  if (bytes.empty()) return;
  const auto kept = std::make_shared<const std::vector<std::byte>>(std::move(bytes));
  bytes_ = *kept;
  owner_ = kept;
}

Data Data::withBytesNoCopy(std::span<const std::byte> bytes, std::shared_ptr<const void> owner) {
  Data data;
  data.bytes_ = bytes;
  data.owner_ = std::move(owner);
  return data;
}

bool operator==(const Data& a, const Data& b) {
  if (a.size() != b.size()) return false;
  return a.data() == b.data() || std::equal(a.begin(), a.end(), b.begin());
}

}  // namespace FrameworkUtility
