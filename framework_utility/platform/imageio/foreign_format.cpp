#include <framework_utility/platform/imageio/foreign_format.h>

#include <framework_utility/platform/foundation/values/byte_reader.h>

namespace FrameworkUtility::detail {

namespace {

struct Mark {
  std::size_t offset;
  std::string_view bytes;
  std::string_view format;
};

/// The first that fits counts.
constexpr Mark marks[] = {{4, "ftyphei", "HEIC"},
                          {4, "ftyphev", "HEIC"},
                          {4, "ftypmif1", "HEIC"},
                          {4, "ftypmsf1", "HEIC"},
                          {4, "ftypavi", "AVIF"},
                          {4, "ftyp", "A film"},
                          {4, "JXL \r\n\x87\n", "JPEG XL"},
                          {0, "GIF8", "GIF"},
                          {8, "WEBP", "WebP"},
                          {0, {"II*\0", 4}, "TIFF"},
                          {0, {"MM\0*", 4}, "TIFF"},
                          {0, "%PDF", "PDF"},
                          {0, "<svg", "SVG"},
                          {0, "<?xml", "SVG"}};

}  // namespace

std::string_view foreignFormat(std::span<const std::byte> beginning) {
  const std::string_view text = asText(beginning);
  for (const auto& [offset, bytes, format] : marks) {
    if (text.size() > offset && text.substr(offset).starts_with(bytes)) return format;
  }
  return {};
}

}  // namespace FrameworkUtility::detail
