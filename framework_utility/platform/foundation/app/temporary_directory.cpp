#include <framework_utility/platform/foundation/app/temporary_directory.h>

#include <framework_utility/platform/foundation/app/application.h>
#include <framework_utility/platform/foundation/values/random.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <mutex>
#include <string_view>

namespace FrameworkUtility {

namespace {

/// The system's temporary directory, without a slash at the end.
std::string systemTemporaryDirectory() {
  const char* variable = std::getenv("TMPDIR");
  std::string_view path = variable ? variable : "";
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  struct stat status {};
  const bool isUsable = path.starts_with('/') && path.size() > 1 &&
                        stat(std::string(path).c_str(), &status) == 0 && S_ISDIR(status.st_mode);
  return isUsable ? std::string(path) : "/tmp";
}

/// Makes the folder unless it is there. Whether it is the user's own and nobody else could put
/// anything into it; a link is not.
bool makePrivateFolder(const std::string& path) {
  mkdir(path.c_str(), 0700);
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) || status.st_uid != geteuid() ||
      (status.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
    return false;
  }
  return (status.st_mode & 0777) == 0700 || chmod(path.c_str(), 0700) == 0;
}

std::mutex folderMutex;

}  // namespace

std::string temporaryDirectory() {
  static std::string& folder =
      *new std::string(systemTemporaryDirectory() + "/" + application().bundleIdentifier + "-" +
                       std::to_string(geteuid()));
  const std::lock_guard lock(folderMutex);
  // Asked each time: what cleans the system's directory may take the folder away.
  if (!makePrivateFolder(folder)) {
    // Somebody holds the name, so another one, which nobody can have guessed.
    folder = systemTemporaryDirectory() + "/" + newUUIDString();
    makePrivateFolder(folder);
  }
  return folder + "/";
}

}  // namespace FrameworkUtility
