#pragma once

#include <framework_utility/platform/foundation/values/description.h>

#include <compare>
#include <concepts>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace FrameworkUtility {

/// A resource's address, usually a file's. File names reach the disk unchanged, whatever characters
/// they hold ("a%20b.jpg", "100%.jpg", "a#b?.jpg").
///
/// Thread: any.
class URL {
 public:
  /// The address of the file at `path`; a relative path is taken from the working directory.
  /// Selector: fileURLWithPath:
  static URL fileURLWithPath(std::string_view path);
  /// The same of a `std::filesystem::path`, which `*path()` converts to as well.
  template <class Path>
  requires std::same_as<typename Path::string_type, std::string>
  static URL fileURLWithPath(const Path& path) { return fileURLWithPath(path.native()); }
  /// Absent when `text` is empty or no address by RFC 3986: a blank and other characters that an
  /// address cannot hold must be percent-encoded.
  /// Selector: URLWithString:
  static std::optional<URL> withString(std::string_view text);
  /// What `text` names from `base` (RFC 3986, section 5.2). Absent when it is no address.
  /// Selector: URLWithString:relativeToURL:
  static std::optional<URL> withString(std::string_view text, const URL& base);

  bool isFileURL() const;
  const std::string& absoluteString() const&;
  std::string absoluteString() const&& { return absolute_; }
  /// Not percent-encoded, without slashes at the end; absent when there is none.
  std::optional<std::string> path() const;

  std::string lastPathComponent() const;
  std::string pathExtension() const;  ///< Without the full stop; empty when there is none.
  // "mailto:a@b.c" has no path to change: such an address comes back as it is.

  /// The folder, with a slash at the end.
  /// Selector: URLByDeletingLastPathComponent
  URL deletingLastPathComponent() const;
  /// Selector: URLByDeletingPathExtension
  URL deletingPathExtension() const;
  /// Selector: URLByAppendingPathComponent:
  URL appendingPathComponent(std::string_view component) const;
  /// Absent when the extension is not valid, such as one with a blank or a slash, and for an
  /// address without a path; unchanged for an empty extension.
  /// Selector: URLByAppendingPathExtension:
  std::optional<URL> appendingPathExtension(std::string_view extension) const;

  std::string description() const { return absoluteString(); }
  friend auto operator<=>(const URL&, const URL&) = default;

 private:
  explicit URL(std::string absolute);

  std::string absolute_;
};

}  // namespace FrameworkUtility

/// Equal addresses, equal hashes: for unordered containers.
template <>
struct std::hash<FrameworkUtility::URL> {
  std::size_t operator()(const FrameworkUtility::URL& url) const {
    return std::hash<std::string>()(url.absoluteString());
  }
};
