#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <type_traits>

namespace FrameworkUtility::detail {

/// Looks at bytes from outside without ever leaving them; keeps no copy and costs nothing to pass.
/// Offsets and counts may be any number: what does not lie inside as a whole reads as 0, or as no
/// bytes, so that only a caller to whom this means something else asks `holds` before.
class ByteReader {
 public:
  explicit ByteReader(std::span<const std::byte> bytes = {}, std::endian order = std::endian::big)
      : bytes_(bytes), order_(order) {}

  std::span<const std::byte> bytes() const { return bytes_; }
  std::size_t size() const { return bytes_.size(); }
  std::endian order() const { return order_; }

  bool holds(std::uint64_t offset, std::uint64_t count) const {
    return offset <= bytes_.size() && count <= bytes_.size() - offset;
  }
  bool startsWith(std::string_view text) const;

  /// An integer or a real of T's size.
  template <class T>
  T at(std::uint64_t offset) const;
  /// An unsigned integer of at most eight bytes.
  std::uint64_t number(std::uint64_t offset, std::size_t size) const;
  std::span<const std::byte> part(std::uint64_t offset, std::uint64_t count) const;
  /// What of `part` there is.
  std::span<const std::byte> partInside(std::uint64_t offset, std::uint64_t count) const;

  // One after the other: each takes what it gives off the front. The first that is not there as a
  // whole takes all, so that a record can be read to its end before it is asked `isCut`.

  template <class T>
  T take();
  std::uint64_t takeNumber(std::size_t size);
  std::span<const std::byte> take(std::uint64_t count);
  bool isCut() const { return isCut_; }

 private:
  std::span<const std::byte> bytes_;
  std::endian order_;
  bool isCut_ = false;
};

/// Bytes as the text that they are.
inline std::string_view asText(std::span<const std::byte> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// The big-endian number that four letters make: `fourCharCode("IHDR")`.
constexpr std::uint32_t fourCharCode(const char (&letters)[5]) {
  std::uint32_t code = 0;
  for (int i = 0; i < 4; ++i) code = code << 8 | static_cast<unsigned char>(letters[i]);
  return code;
}

// Implementation details

// Compilers know these shifts for one instruction, but not a loop over bytes.
constexpr std::uint8_t reversed(std::uint8_t number) { return number; }
constexpr std::uint16_t reversed(std::uint16_t number) {
  return static_cast<std::uint16_t>(number << 8 | number >> 8);
}
constexpr std::uint32_t reversed(std::uint32_t number) {
  return number << 24 | (number & 0xFF00) << 8 | (number >> 8 & 0xFF00) | number >> 24;
}
constexpr std::uint64_t reversed(std::uint64_t number) {
  return std::uint64_t{reversed(static_cast<std::uint32_t>(number))} << 32 |
         reversed(static_cast<std::uint32_t>(number >> 32));
}

template <class T>
T ByteReader::at(std::uint64_t offset) const {
  static_assert(std::is_arithmetic_v<T> && sizeof(T) <= 8);
  using Bits = std::conditional_t<
      sizeof(T) == 1, std::uint8_t,
      std::conditional_t<sizeof(T) == 2, std::uint16_t,
                         std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>>>;
  // As `holds`, with the part that a loop does not repeat first.
  if (bytes_.size() < sizeof(T) || offset > bytes_.size() - sizeof(T)) return T{};
  Bits bits;
  std::memcpy(&bits, bytes_.data() + offset, sizeof bits);
  return std::bit_cast<T>(order_ == std::endian::native ? bits : reversed(bits));
}

inline std::uint64_t ByteReader::number(std::uint64_t offset, std::size_t size) const {
  switch (size) {
    case 1:
      return at<std::uint8_t>(offset);
    case 2:
      return at<std::uint16_t>(offset);
    case 4:
      return at<std::uint32_t>(offset);
    case 8:
      return at<std::uint64_t>(offset);
    default:
      break;
  }
  const std::span<const std::byte> stored = part(offset, size);
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < stored.size(); ++i) {
    const std::byte next = stored[order_ == std::endian::big ? i : size - 1 - i];
    value = value << 8 | std::to_integer<std::uint64_t>(next);
  }
  return value;
}

inline std::span<const std::byte> ByteReader::part(std::uint64_t offset,
                                                   std::uint64_t count) const {
  if (!holds(offset, count)) return {};
  return bytes_.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(count));
}

inline std::span<const std::byte> ByteReader::partInside(std::uint64_t offset,
                                                         std::uint64_t count) const {
  const std::uint64_t begin = std::min<std::uint64_t>(offset, size());
  return part(begin, std::min(count, size() - begin));
}

inline bool ByteReader::startsWith(std::string_view text) const {
  return asText(bytes_).starts_with(text);
}

template <class T>
T ByteReader::take() {
  const T value = at<T>(0);
  take(sizeof(T));
  return value;
}

inline std::uint64_t ByteReader::takeNumber(std::size_t size) {
  const std::uint64_t value = number(0, size);
  take(size);
  return value;
}

inline std::span<const std::byte> ByteReader::take(std::uint64_t count) {
  const std::span<const std::byte> taken = part(0, count);
  isCut_ |= taken.size() < count;
  bytes_ = bytes_.subspan(isCut_ ? bytes_.size() : taken.size());
  return taken;
}

}  // namespace FrameworkUtility::detail
