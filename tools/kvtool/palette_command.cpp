#include <tools/kvtool/commands.h>
#include <tools/kvtool/console.h>
#include <tools/kvtool/json.h>
#include <tools/kvtool/picture_file.h>

#include <framework_utility/color/images/color_analysis.h>
#include <framework_utility/imageio/image_writer.h>
#include <framework_utility/platform/foundation/uniform_type.h>
#include <framework_utility/platform/graphics/rgba_rows.h>

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace kvtool {

using namespace FrameworkUtility;

namespace {

constexpr double longestShown = 1024;  // the photo's side, in pixels

UIImageAnalyzeColorQuality qualityNamed(std::string_view name) {
  if (name == "low") return UIImageAnalyzeColorQuality::low;
  if (name == "high") return UIImageAnalyzeColorQuality::high;
  if (name == "full") return UIImageAnalyzeColorQuality::full;
  return UIImageAnalyzeColorQuality::medium;
}

unsigned byteOf(double component) { return static_cast<unsigned>(std::lround(component * 255)); }

void print(const std::vector<KvColor>& colors) {
  for (const KvColor& color : colors)
    printLine(fmt::format("{}  {:3} {:3} {:3}", color.hexString(), byteOf(color.red),
                          byteOf(color.green), byteOf(color.blue)));
}

Value jsonValue(const UIImageAnalyzeResult& result) {
  Array colors;
  for (const KvColor& color : result.colors)
    colors.push_back(Dictionary{{"hex", color.hexString()},
                                {"red", color.red},
                                {"green", color.green},
                                {"blue", color.blue}});
  return Dictionary{{"containsAlpha", result.containsAlpha}, {"colors", Value(std::move(colors))}};
}

/// The photo and, to the right, its colours from top to bottom, each as high as the others. In the
/// photo's colour space, whose components the colours are. Absent when memory is short.
std::optional<CGImage> pictureOf(const CGImage& photo, const std::vector<KvColor>& colors) {
  const auto pixels = detail::rgbaPixels(photo, detail::AlphaForm::premultiplied);
  const std::size_t stripWidth =
      colors.empty() ? 0 : std::max<std::size_t>(std::min(photo.width(), photo.height()) / 4, 1);
  const std::size_t photoBytes = photo.width() * 4;
  const std::size_t bytesPerRow = photoBytes + stripWidth * 4;
  auto picture = detail::PixelBuffer::allocate(photo.height(), bytesPerRow);
  if (!pixels || !picture) return std::nullopt;
  for (std::size_t y = 0; y < photo.height(); ++y) {
    std::uint8_t* out = std::copy_n(pixels->data() + y * photoBytes, photoBytes, picture->row(y));
    for (std::size_t x = 0; x < stripWidth; ++x) {
      const KvColor& color = colors[y * colors.size() / photo.height()];
      for (const double component : {color.red, color.green, color.blue, color.alpha})
        *out++ = static_cast<std::uint8_t>(byteOf(component));
    }
  }
  const bool hasAlpha = detail::carriesAlpha(photo.alphaInfo());
  return CGImage::create({.width = photo.width() + stripWidth,
                          .height = photo.height(),
                          .bytesPerRow = bytesPerRow,
                          .alphaInfo = hasAlpha ? CGImageAlphaInfo::premultipliedLast
                                                : CGImageAlphaInfo::noneSkipLast},
                         *photo.colorSpace(), std::move(*picture).share());
}

bool draw(const PaletteOptions& options, const std::vector<KvColor>& colors) {
  const std::optional<UIImage> photo =
      thumbnailForImageAtURL(URL::fileURLWithPath(options.file), {longestShown, longestShown});
  const std::optional<CGImage> picture =
      photo ? pictureOf(*photo->cgImage(), colors) : std::nullopt;
  if (!picture) {
    printProblem(options.file, "the picture cannot be drawn");
    return false;
  }
  return writePicture(*picture, UTTypePNG.identifier(), options.png);
}

}  // namespace

bool printPalette(const PaletteOptions& options) {
  const auto result = analyzeImageWithQuality(URL::fileURLWithPath(options.file),
                                              qualityNamed(options.quality), options.count);
  if (!result) {
    printNoPicture(options.file, "picture in colour");
    return false;
  }
  if (options.json)
    printLine(json(jsonValue(*result)));
  else
    print(result->colors);
  return options.png.empty() || draw(options, result->colors);
}

}  // namespace kvtool
