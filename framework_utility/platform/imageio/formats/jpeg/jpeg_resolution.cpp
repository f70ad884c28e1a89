#include <framework_utility/platform/imageio/formats/jpeg/jpeg_resolution.h>

#include <framework_utility/platform/imageio/metadata/exif/exif.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <cmath>
#include <limits>
#include <string_view>

namespace FrameworkUtility::detail {

namespace {

double numberAt(const Dictionary* dictionary, std::string_view key) {
  const Number* number = dictionary ? dictionary->get<Number>(key) : nullptr;
  return number ? number->doubleValue() : 0;
}

/// 0 when it is no number that a field of JFIF can hold.
template <class Field>
Field fieldOf(double value) {
  const double whole = std::round(value);
  return whole >= 0 && whole <= std::numeric_limits<Field>::max() ? static_cast<Field>(whole)
                                                                  : Field{0};
}
constexpr auto density = fieldOf<std::uint16_t>;

std::optional<JpegResolution> stored(const Dictionary* jfif) {
  const Array* version = jfif ? jfif->get<Array>(kCGImagePropertyJFIFVersion) : nullptr;
  if (!version || version->size() != 3) return std::nullopt;
  const auto part = [&](std::size_t index) {
    const Number* number = (*version)[index].as<Number>();
    return number ? number->doubleValue() : 0;
  };
  constexpr auto byte = fieldOf<std::uint8_t>;
  return JpegResolution{.majorVersion = byte(part(0)),
                        .minorVersion = byte(10 * part(1) + part(2)),  // [1, 0, 2] is 1.02
                        .unit = byte(numberAt(jfif, kCGImagePropertyJFIFDensityUnit)),
                        .x = density(numberAt(jfif, kCGImagePropertyJFIFXDensity)),
                        .y = density(numberAt(jfif, kCGImagePropertyJFIFYDensity))};
}

}  // namespace

std::optional<JpegResolution> jpegResolution(const Dictionary& properties, bool isNeeded) {
  const Dictionary* jfif = properties.get<Dictionary>(kCGImagePropertyJFIFDictionary);
  std::optional<JpegResolution> result = stored(jfif);
  const bool isStored = result.has_value();
  if (!isStored && !isNeeded) return std::nullopt;
  if (!isStored) result.emplace();
  const auto isSaid = [&](double dots, std::string_view tiffKey, std::uint16_t inFile) {
    return dots == tiffDotsPerInch(properties, tiffKey) || dots == (result->unit == 1   ? 1
                                                                    : result->unit == 2 ? 2.54
                                                                                        : 0) *
                                                                       inFile;
  };
  const double x = numberAt(&properties, kCGImagePropertyDPIWidth);
  const double y = numberAt(&properties, kCGImagePropertyDPIHeight);
  const bool areKept = isStored && isSaid(x, kCGImagePropertyTIFFXResolution, result->x) &&
                       isSaid(y, kCGImagePropertyTIFFYResolution, result->y);
  if (!areKept && density(x) != 0 && density(y) != 0) {
    result->unit = 1;
    result->x = density(x);
    result->y = density(y);
  }
  return result;
}

}  // namespace FrameworkUtility::detail
