#pragma once

#include <framework_utility/platform/imageio/byte_source.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace FrameworkUtility::detail {

/// What a PNG's pixels become while they are read. Palettes and fewer than 8 bits are expanded
/// either way, and RGB has a fourth component, skipped where there is no alpha.
enum class PngForm {
  whole,    ///< 8 or 16 bits, grey or RGB, with straight alpha: all that the file has.
  reduced,  ///< 8-bit grey without alpha or RGBA, as the area scaler takes them.
};

/// libpng's reader behind a C++ face. After a false it is of no more use.
class PngReader {
 public:
  explicit PngReader(const ByteSource& source);
  PngReader(const PngReader&) = delete;
  PngReader& operator=(const PngReader&) = delete;
  ~PngReader();

  /// Reads up to the pixels.
  [[nodiscard]] bool start(PngForm form);

  std::size_t width() const { return width_; }
  std::size_t height() const { return height_; }
  std::size_t components() const { return components_; }
  std::size_t bitsPerComponent() const { return bitsPerComponent_; }
  std::size_t bytesPerRow() const { return bytesPerRow_; }
  bool hasAlpha() const { return hasAlpha_; }
  /// Rows of an interlaced picture arrive in seven passes: such a one must be read whole.
  bool isInterlaced() const { return passes_ > 1; }

  [[nodiscard]] bool readRow(std::uint8_t* row);
  [[nodiscard]] bool readAllRows(std::uint8_t* rows);

 private:
  struct State;

  std::unique_ptr<State> state_;
  std::size_t width_ = 0;
  std::size_t height_ = 0;
  std::size_t components_ = 0;
  std::size_t bitsPerComponent_ = 0;
  std::size_t bytesPerRow_ = 0;
  int passes_ = 1;
  bool hasAlpha_ = false;
};

}  // namespace FrameworkUtility::detail
