#include <framework_utility/platform/foundation/files/files.h>

#include <framework_utility/platform/foundation/files/posix_error.h>
#include <framework_utility/platform/foundation/files/real_file_manager.h>

#include <cerrno>
#include <new>
#include <stdexcept>
#include <utility>

namespace FrameworkUtility {

FileManager& FileManager::defaultManager() {
  const auto* manager = ScopedFileManager::inPlace();
  return manager ? manager->get() : detail::realFileManager();
}

bool FileManager::fileExistsAtPath(std::string_view path) const {
  return attributesOfItemAtPath(path, nullptr).has_value();
}

bool FileManager::directoryExistsAtPath(std::string_view path) const {
  const std::optional<FileAttributes> attributes = attributesOfItemAtPath(path, nullptr);
  return attributes && attributes->kind == FileKind::directory;
}

std::optional<Data> FileManager::contentsAtPath(std::string_view path, Error* error) const {
  const auto file = openFileAtPath(path, error);
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
  return detail::fail(error, {ENOMEM, detail::FileAccess::reading}, path);
}

}  // namespace FrameworkUtility
