#pragma once

#include <framework_utility/platform/foundation/values/value.h>

#include <cstdint>
#include <optional>

namespace FrameworkUtility::detail {

/// What a JFIF segment says.
struct JpegResolution {
  std::uint8_t majorVersion = 1;
  std::uint8_t minorVersion = 1;
  std::uint8_t unit = 0;  ///< 0: none, only the shape of a pixel; 1: a inch; 2: a centimetre.
  std::uint16_t x = 1;
  std::uint16_t y = 1;
};

/// For a file with these properties: what "{JFIF}" says, unless DPIWidth and DPIHeight say what
/// neither it nor "{TIFF}" does. Without "{JFIF}" absent, unless `isNeeded`.
std::optional<JpegResolution> jpegResolution(const Dictionary& properties, bool isNeeded);

}  // namespace FrameworkUtility::detail
