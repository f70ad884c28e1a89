#include <framework_utility/platform/foundation/property_lists/base64.h>

#include <cstdint>

namespace FrameworkUtility::detail {
namespace {

constexpr std::string_view digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::string_view blanks = " \t\r\n";

}  // namespace

std::optional<std::vector<std::byte>> bytesFromBase64(std::string_view text) {
  std::vector<std::byte> bytes;
  bytes.reserve(text.size() / 4 * 3 + 3);
  std::uint32_t bits = 0;
  std::size_t digitsInGroup = 0;
  bool isPadded = false;
  for (const char c : text) {
    if (blanks.find(c) != std::string_view::npos) continue;
    const std::size_t digit = digits.find(c);
    if (c == '=') isPadded = true;
    if (isPadded && c != '=') return std::nullopt;
    if (isPadded) continue;
    if (digit == std::string_view::npos) return std::nullopt;
    bits = bits << 6 | static_cast<std::uint32_t>(digit);
    if (++digitsInGroup < 4) continue;
    for (const int shift : {16, 8, 0}) bytes.push_back(static_cast<std::byte>(bits >> shift));
    digitsInGroup = 0;
  }
  if (digitsInGroup == 1) return std::nullopt;
  if (digitsInGroup >= 2) {
    bytes.push_back(static_cast<std::byte>(bits >> (digitsInGroup == 2 ? 4 : 10)));
  }
  if (digitsInGroup == 3) bytes.push_back(static_cast<std::byte>(bits >> 2));
  return bytes;
}

}  // namespace FrameworkUtility::detail
