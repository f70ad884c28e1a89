#include <framework_utility/files/file_utility.h>

#include <framework_utility/errors/fail.h>
#include <framework_utility/platform/foundation/values/path.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <vector>

namespace FrameworkUtility {

namespace {

constexpr std::string_view copyMark = " copy";

/// What operations take for a URL: its path, or the empty one that stands for a missing one.
std::string pathOf(const URL& url) { return url.path().value_or(""); }

/// The names in a folder; none when it is missing or cannot be listed.
std::vector<std::string> entries(const FileManager& files, std::string_view folder) {
  if (folder.empty()) return {};
  return files.contentsOfDirectoryAtPath(folder, nullptr).value_or(std::vector<std::string>());
}

/// The number after the last " copy " when the name ends with it: ASCII digits alone, within 64
/// bits.
std::optional<std::uint64_t> numberAfter(std::string_view copyMarkAndRest) {
  const std::string_view rest = copyMarkAndRest.substr(copyMark.size());
  if (!rest.starts_with(' ')) return std::nullopt;
  std::uint64_t number = 0;
  const char* const end = rest.data() + rest.size();
  const auto [stopped, failure] = std::from_chars(rest.data() + 1, end, number);
  if (failure != std::errc() || stopped != end) return std::nullopt;
  return number;
}

}  // namespace

bool fileExistsAtUrl(const FileManager& files, const URL& url) {
  const std::optional<std::string> path = url.path();
  return path && files.fileExistsAtPath(*path);
}

std::size_t numberOfItemsInFolderAtPath(const FileManager& files, std::string_view path) {
  return entries(files, path).size();
}

std::size_t numberOfItemsInFolderAtURL(const FileManager& files, const URL& url) {
  return numberOfItemsInFolderAtPath(files, pathOf(url));
}

bool isFolderEmptyAtPath(const FileManager& files, std::string_view path) {
  return numberOfItemsInFolderAtPath(files, path) == 0;
}

bool isFolderEmptyAtURL(const FileManager& files, const URL& url) {
  return isFolderEmptyAtPath(files, pathOf(url));
}

void removeFolderIfEmptyAtPath(FileManager& files, std::string_view path) {
  if (path.empty()) return;
  std::string folder(path);
  if (!files.fileExistsAtPath(path)) {
    if (paths::pathExtension(path).empty()) return;
    folder = paths::deletingLastPathComponent(path);
  }
  // Refuses a file and a folder with anything in it, even one that cannot be listed and so counts
  // as empty elsewhere.
  files.removeEmptyDirectoryAtPath(folder, nullptr);
}

void removeFolderIfEmptyAtURL(FileManager& files, const URL& url) {
  removeFolderIfEmptyAtPath(files, pathOf(url));
}

void removeParentFolderIfEmptyAtPath(FileManager& files, std::string_view path) {
  removeFolderIfEmptyAtPath(files, paths::deletingLastPathComponent(path));
}

void removeParentFolderIfEmptyAtURL(FileManager& files, const URL& url) {
  removeParentFolderIfEmptyAtPath(files, pathOf(url));
}

void deleteContentOfFolderAtPath(FileManager& files, std::string_view path) {
  for (const std::string& entry : entries(files, path)) {
    files.removeItemAtPath(paths::appendingPathComponent(path, entry), nullptr);
  }
}

void deleteContentOfFolderAtURL(FileManager& files, const URL& url) {
  deleteContentOfFolderAtPath(files, pathOf(url));
}

void deleteFolderThatContainsFileAtPath(FileManager& files, std::string_view path) {
  // The parent of a bare name is "", that of "/a" is "/": the file manager removes neither.
  files.removeItemAtPath(paths::deletingLastPathComponent(path), nullptr);
}

void deleteFolderThatContainsFileAtUrl(FileManager& files, const URL& url) {
  deleteFolderThatContainsFileAtPath(files, pathOf(url));
}

void moveContentOfFolderPath(FileManager& files, std::string_view folder,
                             std::string_view toFolder) {
  if (toFolder.empty()) return;
  for (const std::string& entry : entries(files, folder)) {
    files.moveItemAtPath(paths::appendingPathComponent(folder, entry),
                         paths::appendingPathComponent(toFolder, entry), nullptr);
  }
}

std::string fileNameToCopyFileWithName(const FileManager& files, std::string_view name,
                                       const URL& folder) {
  const std::string folderPath = pathOf(folder);
  const auto isFree = [&](std::string_view candidate) {
    return !files.fileExistsAtPath(paths::appendingPathComponent(folderPath, candidate));
  };
  if (isFree(name)) return std::string(name);

  const std::string base = paths::deletingPathExtension(name);
  const std::string extension = paths::pathExtension(name);
  std::string stem = base + std::string(copyMark);
  std::uint64_t number = 2;
  if (base.ends_with(copyMark)) {
    stem = base;
  } else {
    const std::size_t mark = base.rfind(copyMark);
    const std::optional<std::uint64_t> last =
        mark == std::string::npos ? std::nullopt : numberAfter(std::string_view(base).substr(mark));
    if (last) {
      stem = base.substr(0, mark + copyMark.size());
      number = std::max<std::uint64_t>(*last + 1, 2);  // never 1, after " copy 0" either
    } else if (std::string first = paths::appendingPathExtension(stem, extension); isFree(first)) {
      return first;
    }
  }
  while (true) {
    std::string candidate =
        paths::appendingPathExtension(stem + " " + std::to_string(number), extension);
    if (isFree(candidate)) return candidate;
    ++number;
  }
}

std::optional<std::string> duplicateFileAtPath(FileManager& files, std::string_view path,
                                               Error* error) {
  if (path.empty()) return detail::fail(error, FileManagerDuplicateError::pathIsNil);
  const std::optional<URL> copy = duplicateFileAtUrl(files, URL::fileURLWithPath(path), error);
  return copy ? copy->path() : std::nullopt;
}

std::optional<URL> duplicateFileAtUrl(FileManager& files, const URL& url, Error* error) {
  const std::string path = pathOf(url);
  if (path.empty()) return detail::fail(error, FileManagerDuplicateError::pathIsNil);
  const std::string folder = paths::deletingLastPathComponent(path);
  const std::string name = fileNameToCopyFileWithName(files, paths::lastPathComponent(path),
                                                      URL::fileURLWithPath(folder));
  const std::string copy = paths::appendingPathComponent(folder, name);
  Error cause;
  if (!files.copyItemAtPath(path, copy, &cause)) {
    return detail::fail(error, FileManagerDuplicateError::copyFailed, cause);
  }
  return URL::fileURLWithPath(copy);
}

}  // namespace FrameworkUtility
