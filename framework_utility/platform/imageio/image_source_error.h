#pragma once

#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/foundation/values/error.h>

#include <string_view>

namespace FrameworkUtility {

/// Why an image cannot be had. The path stands under `NSFilePathErrorKey` where the image is a
/// file's, and the description may say more than the message here: the numbers of a limit, the name
/// of a format. What the file system refuses comes as file_error.h says.
struct CGImageSourceError {
  static constexpr std::string_view domain = NSCocoaErrorDomain;
  /// No image at this index, or a thumbnail without a side above 0.
  static constexpr ErrorCode noSuchImage{domain, 256, "There is no such image."};
  /// No image at all, or one that is damaged or cut off; the description says which.
  static constexpr ErrorCode corruptFile{domain, 259, "The file is damaged."};
  static constexpr ErrorCode notAFileURL{domain, 262, "The URL is not that of a file."};
  /// Past one of `CGImageSourceLimits`.
  static constexpr ErrorCode tooLarge{domain, 263, "The image is too large."};
  /// A known format, or a kind of image in one, that is not read here.
  static constexpr ErrorCode unsupported{domain, 3328, "Images of this kind are not read here."};
};

}  // namespace FrameworkUtility
