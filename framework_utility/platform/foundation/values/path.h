#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace FrameworkUtility::paths {

// Rules for paths as texts; nothing looks at the disk. Thread: any.

/// "c.txt" of "/a/b/c.txt" and of "/a/b/c.txt/"; "/" of "/"; empty of "".
/// Selector: lastPathComponent
std::string lastPathComponent(std::string_view path);
/// Without the full stop. Empty for a name that begins with its only full stop or ends in one, and
/// for an extension that is not valid, such as one with a blank.
/// Selector: pathExtension
std::string pathExtension(std::string_view path);
/// "/" of "/a", "" of "a", "a" of "a/b/".
/// Selector: stringByDeletingLastPathComponent
std::string deletingLastPathComponent(std::string_view path);
/// "/a/b" of "/a/b.txt"; a path without an extension unchanged.
/// Selector: stringByDeletingPathExtension
std::string deletingPathExtension(std::string_view path);
/// One "/" between both.
/// Selector: stringByAppendingPathComponent:
std::string appendingPathComponent(std::string_view path, std::string_view component);
/// The path unchanged for an extension that is empty or not valid.
/// Selector: stringByAppendingPathExtension:
std::string appendingPathExtension(std::string_view path, std::string_view extension);
/// Whether a path may end in "." and this: not empty, no "/", blank or bidirectional control.
bool isValidPathExtension(std::string_view extension);

}  // namespace FrameworkUtility::paths
