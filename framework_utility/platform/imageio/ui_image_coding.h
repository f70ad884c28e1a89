#pragma once

#include <framework_utility/platform/foundation/values/data.h>
#include <framework_utility/platform/foundation/values/error.h>
#include <framework_utility/platform/graphics/ui_image.h>
#include <framework_utility/platform/imageio/image_source.h>

#include <optional>
#include <string_view>

namespace FrameworkUtility {

// The operations of UIImage that need codecs. Thread: any.

/// Absent when there is no file or no whole image in it, and past the default limits of an image
/// source; image_source_error.h has the errors.
/// Selector: imageWithContentsOfFile:
std::optional<UIImage> imageWithContentsOfFile(std::string_view path, Error* error = nullptr);
/// Selector: imageWithData:
std::optional<UIImage> imageWithData(const Data& data, Error* error = nullptr);
/// The first image of the source, turned as its properties say.
std::optional<UIImage> imageWithImageSource(const CGImageSource& source, Error* error = nullptr);

/// The picture as JPEG at `quality` in 0...1, its orientation recorded; absent without a bitmap.
/// Platform: UIImageJPEGRepresentation
std::optional<Data> UIImageJPEGRepresentation(const UIImage& image, double quality,
                                              Error* error = nullptr);

}  // namespace FrameworkUtility
