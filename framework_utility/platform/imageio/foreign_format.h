#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace FrameworkUtility::detail {

/// What a file is that looks like a picture to people and has no codec here, by its first 16
/// bytes: "HEIC", "A film". Empty for anything else.
std::string_view foreignFormat(std::span<const std::byte> beginning);

}  // namespace FrameworkUtility::detail
