#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace FrameworkUtility::detail {

/// The bytes that RFC 4648's base 64 writes as `text`. White space may stand anywhere, the padding
/// may be missing. Absent for any other character, for padding before the end, and when a group is
/// a single digit.
std::optional<std::vector<std::byte>> bytesFromBase64(std::string_view text);

}  // namespace FrameworkUtility::detail
