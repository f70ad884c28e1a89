#include <tools/kvtool/files/output.h>

#include <tools/kvtool/console/console.h>

#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/foundation/values/path.h>

#include <fcntl.h>
#include <fmt/core.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

namespace kvtool {

using namespace FrameworkUtility;

namespace {

namespace fs = std::filesystem;

/// What `name` leads to, through links whose targets need not be there; a link for those that lead
/// in a circle.
fs::path targetOf(const std::string& name) {
  constexpr int mostLinks = 40;  // as many as the system follows
  fs::path path = name;
  std::error_code problem;
  for (int i = 0; i < mostLinks && fs::is_symlink(path, problem); ++i) {
    path = path.parent_path() / fs::read_symlink(path, problem);
  }
  return path;
}

/// To a pipe or a device, which must not be replaced and cannot be cut.
bool writeThrough(std::span<const std::byte> bytes, const std::string& name) {
  // Without O_CREAT: what has gone meanwhile does not come back as a file.
  const int output = open(name.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC);
  bool worked = output >= 0;
  while (worked && !bytes.empty()) {
    const ssize_t count = ::write(output, bytes.data(), bytes.size());
    if (count >= 0) {
      bytes = bytes.subspan(static_cast<std::size_t>(count));
    } else {
      worked = errno == EINTR;
    }
  }
  const int number = errno;
  const bool isClosed = output < 0 || close(output) == 0;
  if (worked && isClosed) return true;
  printProblem(name, Error(NSPOSIXErrorDomain, worked ? errno : number));
  return false;
}

std::string canonical(const std::string& path) {
  std::error_code problem;
  return fs::weakly_canonical(path, problem).string();
}

}  // namespace

bool isStandardOutput(std::string_view name) { return name == "-" || name == "/dev/stdout"; }

bool writeOutput(std::span<const std::byte> bytes, const std::string& name) {
  if (isStandardOutput(name)) {
    printBytes(bytes);
    return true;
  }
  std::error_code problem;
  const fs::file_status status = fs::status(name, problem);
  if (fs::exists(status) && !fs::is_regular_file(status)) return writeThrough(bytes, name);
  const fs::path target = targetOf(name);
  Error error(NSPOSIXErrorDomain, ELOOP);
  if (!fs::is_symlink(target, problem) &&
      FileManager::defaultManager().writeAtomically(bytes, target.string(), &error)) {
    return true;
  }
  printProblem(name, error);
  return false;
}

OutputFolder::OutputFolder(std::string folder, const std::vector<std::string>& files)
    : folder_(std::move(folder)) {
  for (const std::string& file : files) {
    if (file != "-") files_.insert(canonical(file));
  }
}

std::string OutputFolder::claim(const std::string& file, const std::string& name) {
  Error error;
  if (!FileManager::defaultManager().createDirectoryAtPath(folder_, IntermediateDirectories::create,
                                                           &error)) {
    printProblem(folder_, error);
    return "";
  }
  std::string path = paths::appendingPathComponent(folder_, name);
  if (!claimed_.insert(name).second) {
    printProblem(file, fmt::format("{} is the result of another file already", path));
    return "";
  }
  if (files_.contains(canonical(path))) {
    printProblem(file, fmt::format("{} would be replaced, which was given to be read", path));
    return "";
  }
  return path;
}

std::string stemOf(const std::string& file) {
  return file == "-" ? "stdin" : paths::deletingPathExtension(paths::lastPathComponent(file));
}

}  // namespace kvtool
