#include <framework_utility/platform/imageio/image_formats.h>

#include <framework_utility/platform/imageio/formats/bmp/bmp_format.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_format.h>
#include <framework_utility/platform/imageio/formats/png/png_format.h>

#include <algorithm>

namespace FrameworkUtility::detail {

namespace {

/// Every format of this build, in the order in which they are asked.
constexpr const ImageFormat* formats[] = {&jpegFormat, &pngFormat, &bmpFormat};

}  // namespace

const ImageFormat* imageFormatOf(std::span<const std::byte> beginning, std::string_view hint) {
  const ImageFormat* hinted = hint.empty() ? nullptr : imageFormatForType(hint);
  if (hinted && hinted->sniff(beginning)) return hinted;
  const auto* found = std::find_if(std::begin(formats), std::end(formats),
                                   [&](const auto* format) { return format->sniff(beginning); });
  return found == std::end(formats) ? nullptr : *found;
}

const ImageFormat* imageFormatForType(std::string_view type) {
  for (const ImageFormat* format : formats) {
    for (const UTType& own : format->types) {
      if (own.identifier() == type) return format;
    }
  }
  return nullptr;
}

}  // namespace FrameworkUtility::detail
