#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace FrameworkUtility::detail {

// Rows of 8-bit pixels are worked on in whole words of four bytes, for these are what is vectorised
// without the newest instructions.

/// How far a word that was read from four bytes is shifted right to bring byte `index` lowest.
constexpr int shiftOf(std::size_t index) {
  return static_cast<int>(8 * (std::endian::native == std::endian::little ? index : 3 - index));
}

inline std::uint32_t wordAt(const std::uint8_t* p) {
  std::uint32_t word = 0;
  std::memcpy(&word, p, sizeof word);
  return word;
}

inline void setWord(std::uint8_t* p, std::uint32_t word) { std::memcpy(p, &word, sizeof word); }

/// The word whose bytes in memory are these, each in 0...255.
constexpr std::uint32_t wordOf(std::uint32_t red, std::uint32_t green, std::uint32_t blue,
                               std::uint32_t alpha) {
  return red << shiftOf(0) | green << shiftOf(1) | blue << shiftOf(2) | alpha << shiftOf(3);
}

}  // namespace FrameworkUtility::detail
