#include <framework_utility/platform/foundation/values/url.h>

#include <framework_utility/platform/foundation/values/path.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <system_error>
#include <utility>

namespace FrameworkUtility {
namespace {

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isOneOf(char c, std::string_view set) { return set.find(c) != set.npos; }

/// The value of a hexadecimal digit, -1 for another character.
int hexadecimalValue(char c) {
  if (isDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

/// The parts of an address by the grammar of RFC 3986; `before` ends where the path begins, `after`
/// is the query and the fragment.
struct Parts {
  std::string_view scheme, before, path, after;
};

/// Where the first of the characters stands from `begin` on, else the end. As a plain loop, for
/// addresses are short and the standard one calls a function a character.
template <std::size_t size>
std::size_t firstOf(const char (&set)[size], std::string_view text, std::size_t begin) {
  const auto isIn = [&](char c) { return std::find(set, set + size - 1, c) != set + size - 1; };
  while (begin < text.size() && !isIn(text[begin])) ++begin;
  return begin;
}

Parts split(std::string_view text) {
  Parts parts;
  const std::size_t colon = firstOf(":/?#", text, 0);
  if (colon < text.size() && colon > 0 && text[colon] == ':' && isLetter(text[0]) &&
      std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(colon),
                  [](char c) { return isLetter(c) || isDigit(c) || isOneOf(c, "+-."); })) {
    parts.scheme = text.substr(0, colon);
  }
  std::size_t path = parts.scheme.empty() ? 0 : colon + 1;
  if (text.substr(path, 2) == "//") path = firstOf("/?#", text, path + 2);
  const std::size_t end = firstOf("?#", text, path);
  parts.before = text.substr(0, path);
  parts.path = text.substr(path, end - path);
  parts.after = text.substr(end);
  return parts;
}

/// Keeps the characters that may stand in a path as they are. ";" may too by the grammar, but is
/// encoded, for some readers take it as the start of parameters.
std::string percentEncoded(std::string_view path) {
  constexpr char digits[] = "0123456789ABCDEF";
  std::string encoded;
  encoded.reserve(path.size());
  for (const char c : path) {
    if (isLetter(c) || isDigit(c) || isOneOf(c, "/-._~!$&'()*+,:=@")) {
      encoded += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      (encoded += '%') += digits[byte >> 4];
      encoded += digits[byte & 0x0F];
    }
  }
  return encoded;
}

/// `text` holds only well-formed escapes.
std::string percentDecoded(std::string_view text) {
  if (text.find('%') == text.npos) return std::string(text);
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%') {
      decoded +=
          static_cast<char>(hexadecimalValue(text[i + 1]) * 16 + hexadecimalValue(text[i + 2]));
      i += 2;
    } else {
      decoded += text[i];
    }
  }
  return decoded;
}

/// Whether every character may stand in an address, escapes are whole, and only one "#" is there.
bool isWellFormed(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '%') {
      if (text.size() - i < 3 || hexadecimalValue(text[i + 1]) < 0 ||
          hexadecimalValue(text[i + 2]) < 0) {
        return false;
      }
      i += 2;
    } else if (!isLetter(c) && !isDigit(c) && !isOneOf(c, "-._~:/?#[]@!$&'()*+,;=")) {
      return false;
    }
  }
  return std::count(text.begin(), text.end(), '#') <= 1;
}

bool isDirectoryForm(std::string_view path) { return path.size() > 1 && path.back() == '/'; }

/// RFC 3986, section 5.2.4: "." names the folder itself, ".." the one around it.
std::string withoutDotSegments(std::string_view path) {
  const bool isRelative = !path.starts_with('/');
  std::string out;
  while (!path.empty()) {
    const std::size_t slash = std::min(path.find('/', 1), path.size());
    std::string_view segment = path.substr(0, slash);
    if (segment.starts_with('/')) segment.remove_prefix(1);
    path.remove_prefix(slash);
    if (segment == "..") out.erase(std::min(out.rfind('/'), out.size()));
    if (segment != "." && segment != "..") {
      (out += '/') += segment;
    } else if (path.empty()) {
      out += '/';
    }
  }
  if (isRelative) out.erase(0, 1);
  return out;
}

std::string withPath(const Parts& parts, std::string_view path) {
  std::string text(parts.before);
  text += percentEncoded(path);
  return text += parts.after;
}

}  // namespace

URL::URL(std::string absolute) : absolute_(std::move(absolute)) {}

URL URL::fileURLWithPath(std::string_view path) {
  std::string whole(path);
  if (whole.empty() || whole[0] != '/') {
    std::error_code ignored;
    whole = paths::appendingPathComponent(std::filesystem::current_path(ignored).string(), path);
    if (whole.empty() || whole[0] != '/') whole.insert(0, 1, '/');
  }
  return URL("file://" + percentEncoded(whole));
}

std::optional<URL> URL::withString(std::string_view text) {
  if (text.empty() || !isWellFormed(text)) return std::nullopt;
  return URL(std::string(text));
}

std::optional<URL> URL::withString(std::string_view text, const URL& base) {
  if (!isWellFormed(text)) return std::nullopt;
  const Parts own = split(text);
  if (!own.scheme.empty()) return URL(std::string(text));
  const Parts from = split(base.absolute_);
  std::string whole(from.before);
  if (own.path.empty() && own.before.empty()) {
    whole += from.path;
    // A new fragment stands behind the query that is there.
    if (!own.after.starts_with('?')) whole += from.after.substr(0, from.after.find('#'));
    whole += own.after;
    return whole.empty() ? std::nullopt : std::optional(URL(std::move(whole)));
  }
  if (!own.before.empty()) whole = std::string(from.scheme) + ':' + std::string(own.before);
  std::string path(own.path);
  if (own.before.empty() && !path.starts_with('/')) {
    const std::string_view folder = from.path.substr(0, from.path.rfind('/') + 1);
    path.insert(0, folder.empty() && !from.before.empty() ? "/" : folder);
  }
  path = withoutDotSegments(path);
  if (path.empty() && whole.empty()) path = "./";
  return URL((whole += path) += own.after);
}

bool URL::isFileURL() const {
  const std::string_view scheme = split(absolute_).scheme;
  return scheme.size() == 4 && std::equal(scheme.begin(), scheme.end(), "file",
                                          [](char a, char b) { return (a | 0x20) == b; });
}

const std::string& URL::absoluteString() const& { return absolute_; }

std::optional<std::string> URL::path() const {
  const Parts parts = split(absolute_);
  const bool isOpaque = !parts.scheme.empty() && parts.path.substr(0, 1) != "/";  // mailto:a@b.c
  if (parts.path.empty() || isOpaque) return std::nullopt;
  std::string path = percentDecoded(parts.path);
  while (isDirectoryForm(path)) path.pop_back();
  return path;
}

std::string URL::lastPathComponent() const {
  return paths::lastPathComponent(path().value_or(std::string()));
}

std::string URL::pathExtension() const {
  return paths::pathExtension(path().value_or(std::string()));
}

URL URL::deletingLastPathComponent() const {
  const std::optional<std::string> path = this->path();
  if (!path) return *this;
  std::string folder = paths::deletingLastPathComponent(*path);
  if (!folder.empty() && folder != "/") folder += '/';
  // A relative address of one part stands in the folder that it is relative to.
  return URL(withPath(split(absolute_), folder.empty() ? "./" : folder));
}

URL URL::deletingPathExtension() const {
  const std::optional<std::string> path = this->path();
  if (!path) return *this;
  const Parts parts = split(absolute_);
  std::string shorter = paths::deletingPathExtension(*path);
  if (isDirectoryForm(parts.path)) shorter += '/';
  return URL(withPath(parts, shorter));
}

URL URL::appendingPathComponent(std::string_view component) const {
  const Parts parts = split(absolute_);
  const std::optional<std::string> path = this->path();
  if (!path && !parts.path.empty()) return *this;  // no folders in "mailto:a@b.c"
  const std::string folder = path.value_or(parts.before.empty() ? "" : "/");
  return URL(withPath(parts, paths::appendingPathComponent(folder, component)));
}

std::optional<URL> URL::appendingPathExtension(std::string_view extension) const {
  if (extension.empty()) return *this;
  const std::optional<std::string> path = this->path();
  if (!path || *path == "/" || !paths::isValidPathExtension(extension)) return std::nullopt;
  const Parts parts = split(absolute_);
  std::string longer = paths::appendingPathExtension(*path, extension);
  if (isDirectoryForm(parts.path)) longer += '/';
  return URL(withPath(parts, longer));
}

}  // namespace FrameworkUtility
