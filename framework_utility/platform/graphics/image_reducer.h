#pragma once

#include <framework_utility/platform/graphics/area_scaler.h>
#include <framework_utility/platform/graphics/cg_image.h>
#include <framework_utility/platform/graphics/pixel_buffer.h>
#include <framework_utility/platform/graphics/rgba_rows.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

namespace FrameworkUtility::detail {

/// Makes a smaller picture of one whose rows arrive one by one, each pixel the average of its area.
/// The result has 8 bits a component: grey without alpha stays grey, CMYK as it usually lies stays
/// CMYK, all else becomes RGBA, premultiplied or without alpha.
///
///     std::optional<ImageReducer> reducer = ImageReducer::create(layout, space, target);
///     while (reducer && !reducer->isDone()) reducer->push(nextRow());
class ImageReducer {
 public:
  /// For rows that lie as `source` says. Absent when `target` is larger in a side or has an empty
  /// one, for Lab, and when memory is short.
  static std::optional<ImageReducer> create(const CGImageLayout& source, const CGColorSpace& space,
                                            PixelSize target);
  /// How many bytes one takes, the result included.
  static std::uint64_t memory(const CGImageLayout& source, const CGColorSpace& space,
                              PixelSize target);

  /// Takes the next row, top first; it is written over.
  void push(std::uint8_t* row);
  /// Rows that are left change nothing.
  bool isDone() const { return done_ == layout_.height; }
  /// Once, at the end.
  std::optional<CGImage> image() &&;

 private:
  ImageReducer(const CGImageLayout& layout, const CGColorSpace& space, AreaScaler scaler,
               PixelBuffer pixels)
      : layout_(layout), space_(space), scaler_(std::move(scaler)), pixels_(std::move(pixels)) {}

  CGImageLayout layout_;  // of the result
  CGColorSpace space_;
  std::size_t premultiplied_ = 0;  // how many pixels of a row
  std::optional<RGBAConverter> converter_;
  std::optional<PixelBuffer> row_;  // what is converted
  AreaScaler scaler_;
  PixelBuffer pixels_;
  std::size_t done_ = 0;  // rows of the result
};

}  // namespace FrameworkUtility::detail
