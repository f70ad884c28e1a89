#include <framework_utility/platform/foundation/values/random.h>

#include <stdlib.h>
#include <array>
#include <cstddef>

namespace FrameworkUtility {

std::uint32_t randomUnsignedInteger() { return arc4random(); }

double randomUnitReal() {
  std::uint64_t bits = 0;
  arc4random_buf(&bits, sizeof bits);
  return static_cast<double>(bits >> 11) * 0x1p-53;
}

std::string newUUIDString() {
  std::array<std::uint8_t, 16> bytes;
  arc4random_buf(bytes.data(), bytes.size());
  // Version 4 and the standard variant (RFC 4122, section 4.4).
  bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40);
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);

  constexpr char digits[] = "0123456789ABCDEF";
  std::string text;
  text.reserve(36);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += digits[bytes[i] >> 4];
    text += digits[bytes[i] & 0x0F];
  }
  return text;
}

}  // namespace FrameworkUtility
