#pragma once

#include <framework_utility/platform/foundation/files/files.h>

#include <optional>
#include <string>
#include <string_view>

namespace FrameworkUtility::testing {

inline std::span<const std::byte> bytesOf(std::string_view text) {
  return std::as_bytes(std::span(text.data(), text.size()));
}

/// What the file holds, as text; absent when it cannot be read.
inline std::optional<std::string> contentsOf(const FileManager& files, std::string_view path) {
  const auto reader = files.openFileAtPath(path, nullptr);
  if (!reader) return std::nullopt;
  std::string text(static_cast<std::size_t>(reader->size()), '\0');
  const auto read = reader->readAt(0, std::as_writable_bytes(std::span(text)), nullptr);
  if (!read || *read != text.size()) return std::nullopt;
  return text;
}

}  // namespace FrameworkUtility::testing
