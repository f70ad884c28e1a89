#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace FrameworkUtility::detail {

// A binary property list is the signature, the objects, a table of the objects' offsets and a
// trailer; all numbers are big-endian. An object starts with a marker: its type in the high four
// bits, in the low ones a length or size.

inline constexpr std::string_view propertyListSignature = "bplist00";

/// From the start of the trailer: five unused bytes, one for a sorting order, the sizes of an
/// offset and of a reference, then eight bytes each of the number of objects, the top object and
/// the offset of the table.
namespace trailer {
inline constexpr std::size_t offsetSize = 6;
inline constexpr std::size_t referenceSize = 7;
inline constexpr std::size_t objectCount = 8;
inline constexpr std::size_t topObject = 16;
inline constexpr std::size_t tableOffset = 24;
inline constexpr std::size_t size = 32;
}  // namespace trailer

/// The high four bits of a marker, in place.
enum class Marker : std::uint8_t {
  simple = 0x00,      // null 0, false 8, true 9
  integer = 0x10,     // 2^n bytes; 8 and 16 bytes are signed, fewer are not
  real = 0x20,        // 2^n bytes: 4 or 8
  date = 0x30,        // always 3: 2^3 bytes, a real number of seconds since 2001
  data = 0x40,        // n bytes
  ascii = 0x50,       // n characters
  utf16 = 0x60,       // n code units
  uid = 0x80,         // n + 1 bytes
  array = 0xA0,       // n references
  dictionary = 0xD0,  // n references to keys, n to values
};

inline constexpr unsigned nullMarker = 0x00;
inline constexpr unsigned falseMarker = 0x08;
inline constexpr unsigned trueMarker = 0x09;
/// In place of a length: an integer object with the length follows the marker.
inline constexpr unsigned lengthFollows = 0xF;

}  // namespace FrameworkUtility::detail
