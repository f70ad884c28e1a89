#pragma once

#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/foundation/values/error.h>

#include <cstddef>
#include <string_view>

namespace FrameworkUtility {

/// What went wrong, for the developer, in an error's user information.
inline constexpr std::string_view NSDebugDescriptionErrorKey = "NSDebugDescription";

/// How archives fail, with the place under `NSDebugDescriptionErrorKey`.
struct CoderError {
  static constexpr std::string_view domain = NSCocoaErrorDomain;
  /// The bytes are no archive, one past the limits, one whose graph reaches itself, or one that
  /// holds a class that is unknown or not allowed, or a number of another kind than was asked for.
  static constexpr ErrorCode readCorrupt{
      domain, 4864, "The data couldn’t be read because it isn’t in the correct format."};
  /// The archive has no root.
  static constexpr ErrorCode valueNotFound{domain, 4865,
                                           "The data couldn’t be read because it is missing."};
  /// An object cannot be archived, or not with secure coding; or the graph reaches itself, or is
  /// past the limits.
  static constexpr ErrorCode invalidValue{
      domain, 4866, "The data couldn’t be written because it isn’t in the correct format."};
};

/// What archives may hold. The same numbers bound writing, so that what the default ones let pass
/// can be read again.
struct ArchiveLimits {
  /// The size of the data.
  std::size_t bytes = std::size_t{32} << 20;
  /// The objects in the archive's table, each text, number and list among them. The property list
  /// may hold 16 times as many values.
  std::size_t objects = 100'000;
  /// How deep objects may nest: the root is at 1. Never more than 512, which a thread's stack is
  /// sure to hold.
  std::size_t depth = 64;
  /// How many times the size of the data all values may count together that are read from it, above
  /// a free 64 KB: an archive can refer to one list many times, and each time it is read again. A
  /// value counts 8, a byte of text or data 1, a part that is looked at in search of another 2.
  std::size_t expansion = 16;
};

/// Whether a coder takes only classes that support secure coding.
enum class SecureCoding { notRequired, required };

}  // namespace FrameworkUtility
