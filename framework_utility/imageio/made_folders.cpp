#include <framework_utility/imageio/made_folders.h>

#include <framework_utility/imageio/contained_path.h>
#include <framework_utility/platform/foundation/app/temporary_directory.h>
#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/foundation/values/path.h>
#include <framework_utility/platform/foundation/values/random.h>

#include <algorithm>

namespace FrameworkUtility::detail {

MadeFolders::~MadeFolders() {
  FileManager& files = FileManager::defaultManager();
  for (; !made_.empty(); made_.pop_back()) files.removeEmptyDirectoryAtPath(made_.back(), nullptr);
}

void MadeFolders::make(std::string_view path) {
  FileManager& files = FileManager::defaultManager();
  // One by one: only who makes a folder himself knows that it is his.
  Error refusal;
  const auto makeOne = [&](const std::string& folder) {
    if (files.createDirectoryAtPath(folder, IntermediateDirectories::mustExist, &refusal)) {
      made_.push_back(folder);
      return true;
    }
    return files.directoryExistsAtPath(folder);
  };
  std::vector<std::string> missing{std::string(path)};
  while (!makeOne(missing.back())) {
    std::string above = paths::deletingLastPathComponent(missing.back());
    if (refusal.code() != NSFileNoSuchFileError || above.empty() || above == missing.back()) {
      failure_ = refusal;
      return;
    }
    missing.push_back(std::move(above));
  }
  while (missing.pop_back(), !missing.empty()) {
    if (makeOne(missing.back())) continue;
    failure_ = refusal;
    return;
  }
}

bool MadeFolders::keep(Error* error) {
  FileManager& files = FileManager::defaultManager();
  const bool last = std::all_of(made_.begin(), made_.end(), [&](const std::string& folder) {
    const std::string above = paths::deletingLastPathComponent(folder);
    return files.flushDirectoryAtPath(above.empty() ? "." : above, error);
  });
  if (last) made_.clear();
  return last;
}

std::optional<std::string> sessionFolder(std::string_view identifier, MadeFolders& made) {
  if (identifier.empty() || !staysInFolder(identifier)) return std::nullopt;
  std::string path = temporaryDirectory() + std::string(identifier);
  if (!FileManager::defaultManager().fileExistsAtPath(path)) made.make(path);
  return path;
}

std::optional<std::string> newFolderOfSession(std::string_view identifier, MadeFolders& made) {
  const std::optional<std::string> folder = sessionFolder(identifier, made);
  if (!folder) return std::nullopt;
  std::string path;
  do {
    path = *folder + "/" + newUUIDString();
  } while (FileManager::defaultManager().fileExistsAtPath(path));
  made.make(path);
  return path;
}

}  // namespace FrameworkUtility::detail
