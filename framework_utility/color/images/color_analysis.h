#pragma once

#include <framework_utility/color/color.h>
#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/foundation/values/error.h>
#include <framework_utility/platform/foundation/values/raw_value.h>
#include <framework_utility/platform/foundation/values/url.h>
#include <framework_utility/platform/graphics/ui_image.h>
#include <framework_utility/platform/imageio/image_source.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace FrameworkUtility {

/// How large an image is analysed: the raw value is a length in pixels, 0 the image's own size.
enum class UIImageAnalyzeColorQuality : std::int64_t {
  full = 0,
  low = 50,
  medium = 100,
  high = 250
};

template <>
std::optional<UIImageAnalyzeColorQuality> fromRawValue<UIImageAnalyzeColorQuality>(
    std::int64_t rawValue);

/// How an analysis fails beside what an image source says.
struct UIImageAnalyzeError {
  static constexpr ErrorCode noColors{NSCocoaErrorDomain, 3328,
                                      "The image has no pixels in red, green and blue."};
  static constexpr ErrorCode badSize{NSCocoaErrorDomain, 263,
                                     "The image has no points, or too many."};
};

/// What an analysis found.
struct UIImageAnalyzeResult {
  bool containsAlpha = false;   ///< `hasAlpha` of the image.
  std::vector<KvColor> colors;  ///< Most frequent first, opaque.
};

/// The main colours of an image, at most `count`, all of them for 0 or less.
///
/// Pixels count by their premultiplied components in steps of 10, transparent ones not at all, in
/// the image's own colour space. What is no more frequent than a hundredth of the height counts as
/// noise. Of the rest, most frequent first, and of equal ones by least blue, green and red, a
/// colour is taken when it differs from each taken before by more than a quarter in some component.
/// The result depends neither on the machine nor on the order of the walk.
///
/// The image is analysed at its size in points, whatever the quality, unless its larger side on the
/// main screen is no longer than the quality's pixels. Then it is enlarged: one that is wider than
/// high to that width, any other stretched to a square, of which only the lower left part, as large
/// as the image, is seen. Apps have stored colours that were found so.
///
/// Absent without a bitmap and for one whose colour space is not RGB (`noColors`), for a size that
/// truncates to 0 and for more than 536 million points (`badSize`). A size that is not finite, or
/// does not fit 64 bits, stops the process.
///
/// Thread: any.
/// Selector: analyzeImageWithQuality:count:
std::optional<UIImageAnalyzeResult> analyzeImageWithQuality(const UIImage& image,
                                                            UIImageAnalyzeColorQuality quality,
                                                            std::int64_t count,
                                                            Error* error = nullptr);
/// The same of the file, reduced to the quality's pixels where it is larger. Absent for a missing
/// or unreadable file too, and for one beyond the limits, with the errors of image_source_error.h.
/// Selector: analyzeImageWithQuality:count:
std::optional<UIImageAnalyzeResult> analyzeImageWithQuality(const URL& url,
                                                            UIImageAnalyzeColorQuality quality,
                                                            std::int64_t count,
                                                            const CGImageSourceLimits& limits = {},
                                                            Error* error = nullptr);
/// The same.
/// Selector: analyzeImageAtUrl:quality:count:
std::optional<UIImageAnalyzeResult> analyzeImageAtUrl(const URL& url,
                                                      UIImageAnalyzeColorQuality quality,
                                                      std::int64_t count,
                                                      const CGImageSourceLimits& limits = {},
                                                      Error* error = nullptr);

/// Whether the bitmap's pixels carry colour and alpha; false for an alpha mask and without a
/// bitmap.
/// Selector: hasAlpha
bool hasAlpha(const UIImage& image);

}  // namespace FrameworkUtility
