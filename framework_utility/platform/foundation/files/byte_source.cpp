#include <framework_utility/platform/foundation/files/byte_source.h>

#include <framework_utility/platform/foundation/files/posix_error.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <span>
#include <utility>

namespace FrameworkUtility::detail {

namespace {

/// Enough for the metadata of most photographs, little enough for one quick read.
constexpr std::size_t beginningSize = std::size_t{16} * 1024;

/// The `count` bytes at `offset`, fewer where the file has become shorter since it was opened.
std::optional<Data> read(const FileReader& file, std::uint64_t offset, std::size_t count,
                         Error* error = nullptr) {
  try {
    const auto buffer = std::make_shared_for_overwrite<std::byte[]>(count);
    const std::optional<std::size_t> size =
        file.readAt(static_cast<std::int64_t>(offset), {buffer.get(), count}, error);
    if (!size) return std::nullopt;
    return Data::withBytesNoCopy({buffer.get(), *size}, buffer);
  } catch (const std::bad_alloc&) {
    return fail(error, {ENOMEM, FileAccess::reading}, {});
  }
}

}  // namespace

ByteSource::ByteSource(const Data& data) : ByteSource(data, nullptr, data.size()) {}

ByteSource::ByteSource(Data beginning, std::shared_ptr<const FileReader> file, std::uint64_t size)
    : beginning_(std::make_shared<const Data>(std::move(beginning))),
      file_(std::move(file)),
      size_(size) {}

std::optional<ByteSource> ByteSource::open(const FileManager& files, std::string_view path,
                                           Error* error) {
  std::shared_ptr<const FileReader> file = files.openFileAtPath(path, error);
  if (!file) return std::nullopt;
  const auto size = static_cast<std::uint64_t>(std::max<std::int64_t>(file->size(), 0));
  std::optional<Data> beginning =
      read(*file, 0, static_cast<std::size_t>(std::min<std::uint64_t>(size, beginningSize)), error);
  if (!beginning) return std::nullopt;
  return ByteSource(*std::move(beginning), std::move(file), size);
}

Data ByteSource::bytes(std::uint64_t offset, std::size_t count) const {
  if (offset >= size_) return {};
  count = static_cast<std::size_t>(std::min<std::uint64_t>(count, size_ - offset));
  if (offset + count <= beginning_->size()) {
    const std::span<const std::byte> all(*beginning_);
    return Data::withBytesNoCopy(all.subspan(static_cast<std::size_t>(offset), count), beginning_);
  }
  return file_ ? read(*file_, offset, count).value_or(Data()) : Data();
}

}  // namespace FrameworkUtility::detail
