#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace FrameworkUtility::detail {

/// The name of a common image format that has no codec here, by the first 16 bytes of the file;
/// empty for anything else.
std::string_view foreignFormat(std::span<const std::byte> beginning);

}  // namespace FrameworkUtility::detail
