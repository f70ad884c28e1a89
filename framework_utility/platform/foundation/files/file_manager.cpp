#include <framework_utility/platform/foundation/files.h>

#include <framework_utility/platform/foundation/files/real_file_manager.h>

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

}  // namespace FrameworkUtility
