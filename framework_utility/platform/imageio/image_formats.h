#pragma once

#include <framework_utility/platform/imageio/formats/image_format.h>

#include <cstddef>
#include <span>
#include <string_view>

namespace FrameworkUtility::detail {

/// What a format wants to see of a file to know it.
inline constexpr std::size_t sniffedSize = 1024;

/// The format of a file that begins with these bytes; null when nothing here reads it. Of several
/// that know it the one that has `hint`, the identifier of a type, is taken.
const ImageFormat* imageFormatOf(std::span<const std::byte> beginning, std::string_view hint = {});

/// Null for a type that no format has.
const ImageFormat* imageFormatForType(std::string_view type);

}  // namespace FrameworkUtility::detail
