#pragma once

#include <framework_utility/platform/graphics/area_scaler.h>
#include <framework_utility/platform/graphics/cg_image.h>

#include <cstddef>
#include <cstdint>
#include <limits>

namespace FrameworkUtility::detail {

/// What is wanted of an image's pixels, and what reading them may take.
struct RowRequest {
  /// A codec that can reduce while it decodes may do so, but to no less than this in either side.
  /// No size: the whole image.
  PixelSize least = {};
  std::uint64_t mostMemory = std::numeric_limits<std::uint64_t>::max();  ///< The codec's, in bytes.
  std::uint64_t mostScans = std::numeric_limits<std::uint64_t>::max();
};

/// What a codec has met so far; but for `whole`, why there are no rows or no more of them.
enum class RowState {
  whole,
  damaged,
  cut,  ///< The file ends before its pixels do.
  unsupported,
  tooManyScans,
  memoryIsShort,
};

/// The pixels of one image, top row first, as the codec gives them: palettes and fewer than 8 bits
/// expanded, alpha straight, nothing turned, no profile applied. It is made by an `ImageReader`,
/// which it may outlive.
///
/// Thread: one at a time.
class RowReader {
 public:
  RowReader(const RowReader&) = delete;
  RowReader& operator=(const RowReader&) = delete;
  virtual ~RowReader() = default;

  RowState state() const { return state_; }

  // Known unless the state says from the beginning that there are no rows.

  /// How the rows lie in memory, which hold `bytesPerRow` bytes; the size is the reduced one.
  const CGImageLayout& layout() const { return layout_; }
  /// What the components mean: monochrome, rgb or cmyk.
  CGColorSpaceModel model() const { return model_; }
  /// What the codec will keep beside the rows that it gives, in bytes.
  std::uint64_t memory() const { return memory_; }
  /// Whether rows come only all at once, for the codec works on the whole picture, as with an
  /// interlaced one: then `readRows` is called once, for all of them.
  bool isWhole() const { return isWhole_; }

  /// Writes the next `count` rows one behind the other and gives their number: fewer when the codec
  /// cannot go on, which is the last call then.
  [[nodiscard]] virtual std::size_t readRows(std::uint8_t* rows, std::size_t count) = 0;

 protected:
  RowReader() = default;

  RowState state_ = RowState::whole;
  CGImageLayout layout_;
  CGColorSpaceModel model_ = CGColorSpaceModel::rgb;
  std::uint64_t memory_ = 0;
  bool isWhole_ = false;
};

}  // namespace FrameworkUtility::detail
