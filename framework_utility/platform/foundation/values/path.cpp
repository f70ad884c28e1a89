#include <framework_utility/platform/foundation/values/path.h>

#include <cstddef>

namespace FrameworkUtility::paths {
namespace {

std::string_view withoutTrailingSlashes(std::string_view path) {
  const std::size_t last = path.find_last_not_of('/');
  return last == path.npos ? path.substr(0, path.empty() ? 0 : 1) : path.substr(0, last + 1);
}

/// `path` ends in no slash, or is "/".
std::string_view nameIn(std::string_view path) {
  return path == "/" ? path : path.substr(path.rfind('/') + 1);  // npos + 1 is 0
}

std::string_view extensionOf(std::string_view name) {
  const std::size_t point = name.rfind('.');
  // ".hidden" and "..zip" are all name.
  if (point == name.npos || point == 0 || name.substr(0, 2) == "..") return {};
  const std::string_view extension = name.substr(point + 1);
  return isValidPathExtension(extension) ? extension : std::string_view();
}

}  // namespace

std::string lastPathComponent(std::string_view path) {
  return std::string(nameIn(withoutTrailingSlashes(path)));
}

std::string pathExtension(std::string_view path) {
  return std::string(extensionOf(nameIn(withoutTrailingSlashes(path))));
}

std::string deletingLastPathComponent(std::string_view path) {
  const std::string_view whole = withoutTrailingSlashes(path);
  const std::size_t slash = whole.rfind('/');
  if (slash == whole.npos) return {};
  return std::string(withoutTrailingSlashes(whole.substr(0, slash + 1)));
}

std::string deletingPathExtension(std::string_view path) {
  const std::string_view whole = withoutTrailingSlashes(path);
  if (whole == "/") return std::string(path);
  const std::string_view extension = extensionOf(nameIn(whole));
  const std::size_t cut = extension.empty() ? 0 : extension.size() + 1;
  return std::string(whole.substr(0, whole.size() - cut));
}

std::string appendingPathComponent(std::string_view path, std::string_view component) {
  if (path.empty()) return std::string(component);
  std::string result(withoutTrailingSlashes(path));
  const std::size_t first = component.find_first_not_of('/');
  if (first == component.npos) return result;
  if (result != "/") result += '/';
  return result += component.substr(first);
}

std::string appendingPathExtension(std::string_view path, std::string_view extension) {
  const std::string_view whole = withoutTrailingSlashes(path);
  if (whole.empty() || whole == "/" || !isValidPathExtension(extension)) return std::string(path);
  return std::string(whole) + '.' + std::string(extension);
}

bool isValidPathExtension(std::string_view extension) {
  if (extension.empty() || extension.find_first_of("/ ") != extension.npos) return false;
  // The marks, embeddings, overrides and isolates of bidirectional text: U+061C, U+200E, U+200F,
  // U+202A to U+202E, U+2066 to U+2069. They can make "gpj.exe" read as "exe.jpg".
  if (extension.find("\u061C") != extension.npos) return false;
  for (std::size_t at = 0; (at = extension.find('\xE2', at)) != extension.npos; ++at) {
    if (extension.size() - at < 3) break;
    const auto second = static_cast<unsigned char>(extension[at + 1]);
    const auto third = static_cast<unsigned char>(extension[at + 2]);
    if (second == 0x80 && (third == 0x8E || third == 0x8F || (third >= 0xAA && third <= 0xAE))) {
      return false;
    }
    if (second == 0x81 && third >= 0xA6 && third <= 0xA9) return false;
  }
  return true;
}

}  // namespace FrameworkUtility::paths
