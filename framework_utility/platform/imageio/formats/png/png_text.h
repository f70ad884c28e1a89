#pragma once

#include <framework_utility/platform/foundation/values/data.h>
#include <framework_utility/platform/imageio/formats/png/png_chunks.h>
#include <framework_utility/platform/imageio/metadata/values/metadata_budget.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace FrameworkUtility::detail {

/// What all compressed chunks of one file may grow to together. A few kilobytes can hold a gigabyte
/// of zeros.
struct InflationBudget {
  std::size_t bytes = std::size_t{16} << 20;
  bool isExceeded = false;  ///< A stream was left out.
};

/// The contents of a zlib stream; absent when it is damaged, cut, or beyond the budget, from which
/// what was unpacked is taken either way.
std::optional<std::vector<std::byte>> inflated(std::span<const std::byte> stream,
                                               InflationBudget& budget);
/// The bytes as a zlib stream; empty when memory is short.
std::vector<std::byte> deflated(std::span<const std::byte> bytes);

/// The keyword that a tEXt, zTXt, iTXt or iCCP chunk begins with; empty when it has none.
std::string_view pngKeyword(std::span<const std::byte> chunk);

/// Whether a chunk of this type holds a keyword and a text.
constexpr bool isPngText(std::uint32_t type) {
  return type == pngType("tEXt") || type == pngType("zTXt") || type == pngType("iTXt");
}
/// A text as its chunk holds it, unpacked.
struct PngText {
  Data bytes;
  bool isLatin1 = false;  ///< Else UTF-8.

  std::string utf8() const;
  /// Spends what `utf8` takes; false when that is too much.
  bool isWithin(MetadataBudget& budget) const {
    return budget.spend(1, isLatin1 ? 2 * bytes.size() : bytes.size());
  }
};

/// The text of a tEXt, zTXt or iTXt chunk; it shares the chunk's bytes unless they were packed.
std::optional<PngText> pngText(std::uint32_t type, const Data& chunk, InflationBudget& budget);

/// The profile of an iCCP chunk.
std::optional<Data> pngProfile(std::span<const std::byte> chunk, InflationBudget& budget);

/// The part of `whole` from `begin` on, which shares its bytes.
Data suffix(const Data& whole, std::size_t begin);

/// Before there were chunks for metadata, some programs wrote a block as hexadecimal text under
/// "Raw profile type exif" and the like: its name, the number of bytes in decimal, and the digits,
/// each on lines of their own.
std::optional<std::vector<std::byte>> bytesOfRawProfile(std::string_view text);
std::string rawProfile(std::string_view name, std::span<const std::byte> bytes);

}  // namespace FrameworkUtility::detail
