#pragma once

#include <string>
#include <string_view>

namespace FrameworkUtility::testing {

/// A new empty folder on the disk that is removed, with all in it, at the end.
class TemporaryFolder {
 public:
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  const std::string& path() const { return path_; }
  /// The path of an entry, "a/b" too; nothing is made.
  std::string path(std::string_view entry) const { return path_ + "/" + std::string(entry); }

 private:
  std::string path_;
};

}  // namespace FrameworkUtility::testing
