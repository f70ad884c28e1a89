#pragma once

#include <framework_utility/platform/foundation/values/error.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace FrameworkUtility::detail {

/// The folders that an operation makes on its way to a file. Those of one that fails go again, each
/// if nothing has come into it; what was there before stays. Works on the default file manager.
class MadeFolders {
 public:
  MadeFolders() = default;
  MadeFolders(const MadeFolders&) = delete;
  MadeFolders& operator=(const MadeFolders&) = delete;
  ~MadeFolders();

  /// Makes the folder and those missing above it. A failure is left to show where the folder is
  /// used; `failure` says then what the cause was.
  void make(std::string_view path);
  const std::optional<Error>& failure() const { return failure_; }

  /// The folders stay, and last: each is flushed into the one above it. False, with the folders as
  /// they were, when that fails.
  bool keep(Error* error);

 private:
  std::vector<std::string> made_;  // from the outermost
  std::optional<Error> failure_;
};

/// The folder of a session, made when it is not there. Absent for an empty identifier and for one
/// that leads out of the temporary directory.
std::optional<std::string> sessionFolder(std::string_view identifier, MadeFolders& made);
/// A new empty folder in it, named by a UUID.
std::optional<std::string> newFolderOfSession(std::string_view identifier, MadeFolders& made);

}  // namespace FrameworkUtility::detail
