#pragma once

#include <framework_utility/platform/foundation/values/data.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace FrameworkUtility::testing {

using Bytes = std::vector<std::uint8_t>;

/// A PNG put together by hand: the signature, then chunks.
class PngFile {
 public:
  PngFile();

  PngFile& chunk(std::string_view type, const Bytes& data);
  PngFile& chunk(std::string_view type, std::string_view data);
  PngFile& header(std::uint32_t width, std::uint32_t height, int depth, int colorType,
                  int interlacing = 0);
  /// One black 1 x 1 pixel of 8-bit grey, and the end.
  PngFile& pixelAndEnd();

  const Bytes& bytes() const { return bytes_; }
  Data data() const { return Data(std::as_bytes(std::span(bytes_))); }

 private:
  Bytes bytes_;
};

/// A zlib stream.
Bytes deflated(std::string_view text);

/// Rows of samples, packed as the file has them, through libpng. Palettes have 2^depth entries.
struct PngPicture {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  int depth = 8;
  int colorType = 2;
  bool isInterlaced = false;
  Bytes rows;
  Bytes palette;                                 ///< Red, green, blue of each entry.
  Bytes transparency;                            ///< Of the first entries.
  std::vector<std::uint32_t> transparentSample;  ///< Grey, or red, green and blue.
};
Data writtenByLibpng(const PngPicture& picture);

}  // namespace FrameworkUtility::testing
