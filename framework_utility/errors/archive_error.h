#pragma once

#include <framework_utility/platform/foundation/values/error.h>

#include <string_view>

namespace FrameworkUtility {

/// How archiving a colour fails, with the platform's error under `NSUnderlyingErrorKey` where one
/// is the cause.
struct ArchiveError {
  static constexpr std::string_view domain = "NSTervixArchiveErrorDomain";
  static constexpr ErrorCode dataIsNil{domain, 1,
                                       "KvColor+Archiving: unarchivedData: data is nil."};
  static constexpr ErrorCode unarchivingFailed{
      domain, 2, "KvColor+Archiving: unarchivedData: failed to unarchive."};
  static constexpr ErrorCode colorIsNil{domain, 3,
                                        "KvColor+Archiving: unarchivedData: color is nil."};
  static constexpr ErrorCode archivingFailed{domain, 4,
                                             "KvColor+Archiving: archivedData: failed to archive."};
};

}  // namespace FrameworkUtility
