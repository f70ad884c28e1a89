#pragma once

#include <framework_utility/platform/foundation/files/byte_source.h>
#include <framework_utility/platform/imageio/formats/image_header.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace FrameworkUtility::detail {

enum class BmpCoding {
  plain,
  runs,         ///< RLE8 or RLE4, by the bits of a pixel.
  unsupported,  ///< JPEG, PNG, what only OS/2 has, masks with holes, odd depths.
};

/// How a BMP's pixels stand in the file. Offsets are from its beginning.
struct BmpPixels {
  CGImageSourceStatus status = CGImageSourceStatus::unknownType;

  // Known of a complete header.

  PixelSize size;
  bool isTopDown = false;
  BmpCoding coding = BmpCoding::unsupported;
  unsigned bitsPerPixel = 0;
  /// Of red, green, blue and alpha, each of neighbouring bits, in a pixel without palette. One that
  /// is 0 stands for no light, and for no alpha.
  std::array<std::uint32_t, 4> masks{};
  std::uint64_t paletteOffset = 0;
  std::size_t paletteSize = 0;  ///< In colours: never more than a pixel can name, often fewer.
  std::size_t colorSize = 0;    ///< In bytes, the first three of which are blue, green and red.
  std::uint64_t offset = 0;

  bool isIndexed() const { return bitsPerPixel >= 1 && bitsPerPixel <= 8; }
};

/// With a size of the header behind it that is known: two letters alone begin many a text.
bool hasBmpSignature(std::span<const std::byte> beginning);

/// Headers of Windows and OS/2, of the latter's second version what means the same.
///
/// The status is unknownType without the signature, incomplete when the file ends before its pixels
/// begin, and invalidData without a size or with pixels that begin inside the headers. The file's
/// own idea of how long it is, of planes and of how many bytes the pixels take is not asked for,
/// nor believed.
BmpPixels readBmpPixels(const ByteSource& source);

/// The embedded profile, of the header that has room for one. Everything else is taken for sRGB, as
/// most of these files say of themselves: also primaries and gammas given as numbers, and a profile
/// in another file.
ImageHeader readBmpHeader(const ByteSource& source);

}  // namespace FrameworkUtility::detail
