#pragma once

#include <cstdint>
#include <string_view>

namespace FrameworkUtility {

/// What the headers of an image file are like; the pixels are not looked at. `readingHeader` and
/// `unexpectedEOF` are never given here.
enum class CGImageSourceStatus : std::int32_t {
  complete = 0,     ///< Whole.
  incomplete = -1,  ///< Cut off.
  readingHeader = -2,
  unknownType = -3,  ///< Of no format that is known here.
  invalidData = -4,  ///< Damaged.
  unexpectedEOF = -5,
};

/// "statusComplete", "statusUnknownType" and so on, as error messages name it.
std::string_view description(CGImageSourceStatus status);

}  // namespace FrameworkUtility
