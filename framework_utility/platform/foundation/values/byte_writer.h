#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace FrameworkUtility::detail {

/// Bytes in the making: `ByteWriter().put("IHDR").put<std::uint32_t>(width)`.
class ByteWriter {
 public:
  explicit ByteWriter(std::endian order = std::endian::big) : order_(order) {}

  /// All bytes of an integer or a real of this type, which has to be named.
  template <class T>
  ByteWriter& put(std::type_identity_t<T> number);
  /// The low `size` bytes of `number`; what goes beyond its eight is 0.
  ByteWriter& putNumber(std::uint64_t number, std::size_t size);
  ByteWriter& put(std::span<const std::byte> bytes);
  ByteWriter& put(std::string_view text) { return put(std::as_bytes(std::span(text))); }

  void reserve(std::size_t size) { bytes_.reserve(size); }
  std::size_t size() const { return bytes_.size(); }
  std::endian order() const { return order_; }
  operator std::span<const std::byte>() const { return bytes_; }
  /// Leaves none behind.
  std::vector<std::byte> takeBytes() { return std::exchange(bytes_, {}); }

 private:
  std::vector<std::byte> bytes_;
  std::endian order_;
};

// Implementation details

template <class T>
ByteWriter& ByteWriter::put(std::type_identity_t<T> number) {
  static_assert(std::is_arithmetic_v<T> && sizeof(T) <= 8);
  if constexpr (std::is_floating_point_v<T>) {
    using Bits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
    return putNumber(std::bit_cast<Bits>(number), sizeof number);
  } else {
    return putNumber(static_cast<std::uint64_t>(number), sizeof number);
  }
}

inline ByteWriter& ByteWriter::putNumber(std::uint64_t number, std::size_t size) {
  const std::size_t begin = bytes_.size();
  bytes_.resize(begin + size);
  for (std::size_t i = 0; i < size; ++i) {
    bytes_[begin + (order_ == std::endian::big ? size - 1 - i : i)] =
        static_cast<std::byte>(number & 0xFF);
    number >>= 8;
  }
  return *this;
}

inline ByteWriter& ByteWriter::put(std::span<const std::byte> bytes) {
  bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
  return *this;
}

}  // namespace FrameworkUtility::detail
