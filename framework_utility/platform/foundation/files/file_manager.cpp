#include <framework_utility/platform/foundation/files.h>

#include <framework_utility/platform/foundation/files/real_file_manager.h>

#include <atomic>

namespace FrameworkUtility {

namespace {

std::atomic<FileManager*> replacement = nullptr;

}  // namespace

FileManager& FileManager::defaultManager() {
  FileManager* manager = replacement.load();
  return manager ? *manager : detail::realFileManager();
}

bool FileManager::fileExistsAtPath(std::string_view path) const {
  return attributesOfItemAtPath(path, nullptr).has_value();
}

bool FileManager::directoryExistsAtPath(std::string_view path) const {
  const std::optional<FileAttributes> attributes = attributesOfItemAtPath(path, nullptr);
  return attributes && attributes->kind == FileKind::directory;
}

ScopedFileManager::ScopedFileManager(FileManager& manager)
    : previous_(replacement.exchange(&manager)) {}

ScopedFileManager::~ScopedFileManager() { replacement = previous_; }

}  // namespace FrameworkUtility
