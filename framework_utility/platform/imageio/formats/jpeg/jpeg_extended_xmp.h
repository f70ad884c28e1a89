#pragma once

#include <framework_utility/platform/foundation/values/data.h>
#include <framework_utility/platform/imageio/metadata/xmp/xmp_extension.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace FrameworkUtility::detail {

// What is too long for one segment stands as an extension in several (XMP specification part 3,
// 1.1.3.1). Each begins with a signature, the extension's name of 32 characters, its length, and
// where the portion that follows stands in it.

/// The extension of this name that the contents of segments hold; empty when a part of it is
/// missing or there twice, or when they do not agree on its length. Of portions for one place the
/// last one counts.
Data joinExtendedXmp(std::span<const Data> segments, std::string_view name);

/// What the segment of the extension's bytes from `offset` on holds before them.
std::string extendedXmpHead(std::string_view name, std::size_t length, std::size_t offset);

/// A packet that fits into a segment of its own and names its extension, whatever these are. Absent
/// for a packet that is too long and cannot be split.
std::optional<XmpParts> xmpForSegments(const Data& packet, const Data& extension);

}  // namespace FrameworkUtility::detail
