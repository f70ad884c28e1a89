#pragma once

#include <framework_utility/plane/size.h>
#include <framework_utility/platform/graphics/area_scaler.h>
#include <framework_utility/platform/graphics/cg_image.h>
#include <framework_utility/platform/graphics/pixel_buffer.h>
#include <framework_utility/platform/graphics/rgba_rows.h>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace FrameworkUtility::detail {

/// The rows of a bitmap context into which a picture was drawn, without the context: red, green,
/// blue, premultiplied alpha with 8 bits each, in the picture's own colour space, on transparent.
///
/// The picture is stretched into `area`, whose lower left corner is the bitmap's: what does not fit
/// is cut off at the top and on the right. A pixel is the average of the area that it shows, so
/// enlarged pixels have soft edges where they do not meet the bitmap's. Sums are made in double
/// precision and in one order, so that every machine gives the same bytes.
class DrawnRows {
 public:
  struct Row {
    const std::uint8_t* pixels;  ///< As many as the bitmap is wide; good until the next row.
    bool isOpaque;               ///< Fourth bytes say nothing: all pixels are opaque.
  };

  /// Absent unless the picture's space is RGB, for others have no such context; when a side of
  /// `bitmap` is 0, one of `area` below 1, or memory is short.
  static std::optional<DrawnRows> create(const CGImage& image, PixelSize bitmap, Size area);

  /// The row at `y`, counted from the top. Going down is fastest.
  Row row(std::size_t y);

 private:
  DrawnRows(const CGImage& image, const RGBARows& rows, PixelSize bitmap, Size area)
      : image_(image), rows_(rows), bitmap_(bitmap), area_(area) {}

  const std::uint8_t* sourceRow(std::size_t y);
  void sumRows(std::size_t y);
  void averageColumns();

  CGImage image_;
  RGBARows rows_;
  PixelSize bitmap_;
  Size area_;
  bool isCopy_ = false;                 // nothing is stretched or cut off
  bool isInPlace_ = false;              // and the bytes can be used as they lie
  std::optional<PixelBuffer> source_;   // one row of the picture
  std::optional<std::size_t> sourceY_;  // which one
  std::optional<PixelBuffer> sums_;     // double: the rows that a row of the bitmap shows
  std::optional<PixelBuffer> drawn_;    // the row of the bitmap
};

}  // namespace FrameworkUtility::detail
