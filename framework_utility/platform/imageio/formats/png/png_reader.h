#pragma once

#include <framework_utility/platform/foundation/files/byte_source.h>
#include <framework_utility/platform/imageio/formats/decode_request.h>

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

/// libpng's reader behind a C++ face. After a false it is of no more use, and `failed` says why.
class PngReader {
 public:
  PngReader(const ByteSource& source, const DecodeRequest& request);
  PngReader(const PngReader&) = delete;
  PngReader& operator=(const PngReader&) = delete;
  ~PngReader();

  /// Reads up to the pixels. What is asked below is known then.
  [[nodiscard]] bool open(PngForm form);
  /// What libpng will allocate for its rows.
  std::uint64_t memory() const { return memory_; }
  /// Allocates that. Rows can be read then.
  [[nodiscard]] bool start();

  std::size_t width() const { return width_; }
  std::size_t height() const { return height_; }
  std::size_t components() const { return components_; }
  std::size_t bitsPerComponent() const { return bitsPerComponent_; }
  std::size_t bytesPerRow() const { return width_ * components_ * bitsPerComponent_ / 8; }
  bool hasAlpha() const { return hasAlpha_; }
  /// Rows of an interlaced picture arrive in seven passes: such a one must be read whole.
  bool isInterlaced() const { return passes_ > 1; }

  [[nodiscard]] bool readRow(std::uint8_t* row);
  [[nodiscard]] bool readAllRows(std::uint8_t* rows);

  std::nullopt_t failed() const;

 private:
  struct State;

  const DecodeRequest& request_;
  std::unique_ptr<State> state_;
  std::uint64_t memory_ = 0;
  std::size_t width_ = 0;
  std::size_t height_ = 0;
  std::size_t components_ = 0;
  std::size_t bitsPerComponent_ = 0;
  int passes_ = 1;
  bool hasAlpha_ = false;
};

}  // namespace FrameworkUtility::detail
