#pragma once

#include <framework_utility/platform/imageio/formats/png/png_chunks.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace FrameworkUtility::detail {

inline constexpr std::string_view pngMemoryIsShort = "there is not enough memory";

/// libpng's writer behind a C++ face. After a false it is of no more use, and `out` of none at all.
class PngWriter {
 public:
  /// Appends to `out`, which must outlive the writer.
  explicit PngWriter(std::vector<std::byte>& out);
  PngWriter(const PngWriter&) = delete;
  PngWriter& operator=(const PngWriter&) = delete;
  ~PngWriter();

  struct Picture {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    int bitsPerComponent = 8;  ///< 8 or 16.
    int components = 3;        ///< Grey, grey and alpha, RGB, RGB and alpha.
  };

  /// Writes the signature and the picture's facts.
  [[nodiscard]] bool start(const Picture& picture);
  /// Between `start` and the first row, for what stands before the pixels.
  [[nodiscard]] bool writeChunk(std::uint32_t type, std::span<const std::byte> data);
  [[nodiscard]] bool writeChunk(const char (&type)[5], std::span<const std::byte> data) {
    return writeChunk(pngType(type), data);
  }
  /// 16-bit components with the high byte first.
  [[nodiscard]] bool writeRow(const std::uint8_t* row);
  [[nodiscard]] bool finish();

  /// After a false: what libpng said; that memory is short when it said nothing.
  std::string problem() const;

 private:
  struct State;

  std::unique_ptr<State> state_;
};

}  // namespace FrameworkUtility::detail
