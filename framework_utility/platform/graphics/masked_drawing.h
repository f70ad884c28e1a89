#pragma once

#include <framework_utility/plane/affine_transform.h>
#include <framework_utility/platform/graphics/cg_image.h>
#include <framework_utility/platform/graphics/coverage.h>
#include <framework_utility/platform/graphics/gradient_fill.h>
#include <framework_utility/platform/graphics/ui_color.h>

namespace FrameworkUtility::detail {

/// A bitmap of 8-bit red, green, blue and, unless it is skipped, premultiplied alpha, with no side
/// longer than `pixmanLongestSide`.
struct DrawnBitmap {
  PixelRows rows;
  bool hasAlpha = true;
};

// Each lays its source over the pixels that `where` covers, as far as it covers them. False when
// memory is short; nothing is drawn then.

/// Components are clamped into 0...1, NaN to 0.
bool drawColor(const DrawnBitmap& bitmap, const RGBA& color, const Coverage& where);
bool drawGradient(const DrawnBitmap& bitmap, const GradientFill& fill, const Coverage& where);
/// `toPixels` takes the image's pixels, from its top left corner on, to those of the bitmap. Where
/// makes the image thinner than can be seen, and for a bitmap without colours or in Lab, nothing is
/// drawn. False too where
/// the image is too far away to be told where it is.
bool drawImage(const DrawnBitmap& bitmap, const CGImage& image, const AffineTransform& toPixels,
               const Coverage& where);

}  // namespace FrameworkUtility::detail
