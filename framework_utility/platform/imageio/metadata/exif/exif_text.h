#pragma once

#include <bit>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace FrameworkUtility::detail {

/// The text up to the first NUL, without the blanks that cameras pad with, as valid UTF-8: bytes
/// that are not UTF-8 are taken for Latin-1, which cameras write too.
std::string readExifText(std::span<const std::byte> bytes);
/// With its final NUL; text behind a NUL cannot be stored.
std::vector<std::byte> exifText(std::string_view text);

/// The text behind the eight bytes that name its encoding: ASCII, UNICODE (UTF-16) or undefined;
/// without them the whole is text. Absent for JIS beyond ASCII.
std::optional<std::string> readExifComment(std::span<const std::byte> bytes, std::endian order);
/// As ASCII where that is enough, else as UNICODE.
std::vector<std::byte> exifComment(std::string_view text, std::endian order);

}  // namespace FrameworkUtility::detail
