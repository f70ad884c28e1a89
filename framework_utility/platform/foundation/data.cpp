#include <framework_utility/platform/foundation/data.h>

#include <framework_utility/platform/foundation/files.h>
#include <framework_utility/platform/foundation/posix_error.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <new>
#include <stdexcept>
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

std::optional<Data> Data::withContentsOfFile(std::string_view path, Error* error) {
  const auto file = FileManager::defaultManager().openFileAtPath(path, error);
  if (!file) return std::nullopt;
  try {
    // One byte more than there is room for shows the end, also of files that do not know their
    // size, such as those that the kernel makes up.
    std::vector<std::byte> bytes(static_cast<std::size_t>(file->size()) + 1);
    std::size_t done = 0;
    while (true) {
      const auto offset = static_cast<std::int64_t>(done);
      const auto count = file->readAt(offset, std::span(bytes).subspan(done), error);
      if (!count) return std::nullopt;
      done += *count;
      if (done < bytes.size()) break;
      bytes.resize(2 * bytes.size() + 4096);
    }
    bytes.resize(done);
    return Data(std::move(bytes));
  } catch (const std::bad_alloc&) {
  } catch (const std::length_error&) {
  }
  detail::fail({ENOMEM, detail::FileAccess::reading}, path, error);
  return std::nullopt;
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
