#pragma once

#include <framework_utility/platform/foundation/values/data.h>
#include <framework_utility/platform/graphics/color_space.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace FrameworkUtility::detail {

/// Larger profiles are refused; those of presses take about 4 MB.
inline constexpr std::size_t maximumProfileBytes = std::size_t{16} << 20;

/// What an ICC profile says of itself.
struct ColorProfile {
  CGColorSpaceModel model = CGColorSpaceModel::unknown;
  std::size_t numberOfComponents = 0;
  std::string name;  ///< The description, English where there is a choice; may be empty.
};

/// Absent when the bytes are no profile, or one that describes no pixels (such as a device link) or
/// lacks what converting them takes.
std::optional<ColorProfile> readColorProfile(std::span<const std::byte> bytes);

/// Pixels of 8-bit red, green, blue and straight alpha, which stays, from the profile's space into
/// sRGB: perceptual where the profile has a table for it. False, with the pixels as they were, when
/// the profile cannot be used or is none of RGB.
bool convertToSRGB(std::span<const std::byte> profile, std::uint8_t* pixels, std::size_t count);

// Profiles of the spaces that have a name. The bytes are the same in every process.

inline constexpr const char* sRGBProfileName = "sRGB IEC61966-2.1";
inline constexpr const char* displayP3ProfileName = "Display P3";
inline constexpr const char* genericGrayProfileName = "Generic Gray Gamma 2.2 Profile";

Data makeSRGBProfile();
Data makeDisplayP3Profile();
Data makeGenericGrayProfile();

}  // namespace FrameworkUtility::detail
