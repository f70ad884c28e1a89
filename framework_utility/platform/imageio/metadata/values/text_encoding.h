#pragma once

#include <framework_utility/platform/foundation/values/byte_reader.h>

#include <bit>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace FrameworkUtility::detail {

// The texts of metadata come in three encodings; inside the library they are UTF-8.

/// All whole units.
std::u16string utf16Units(ByteReader text);
/// Absent for half a unit at the end and for a surrogate without its other half.
std::optional<std::string> utf8FromUtf16(const ByteReader& text);
/// Units of valid UTF-8; no byte-order mark is added.
std::vector<std::byte> utf16FromUtf8(std::string_view text, std::endian order);

/// Appends `text` as it may stand in an XML 1.0 text or attribute value. Characters that XML cannot
/// hold are left out, bytes that are no UTF-8 become U+FFFD.
void appendXmlEscaped(std::string& out, std::string_view text);

}  // namespace FrameworkUtility::detail
