#include <tools/kvtool/colors/commands.h>
#include <tools/kvtool/console/console.h>
#include <tools/kvtool/console/json.h>
#include <tools/kvtool/files/output.h>
#include <tools/kvtool/files/picture_input.h>
#include <tools/kvtool/files/picture_output.h>

#include <framework_utility/color/images/color_analysis.h>
#include <framework_utility/imageio/image_writer.h>
#include <framework_utility/platform/foundation/app/uniform_type.h>
#include <framework_utility/platform/graphics/cg_context.h>

#include <fmt/core.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <memory>

namespace kvtool {

using namespace FrameworkUtility;

namespace {

struct Options {
  std::vector<std::string> files;
  int count = 5;                   ///< At most; 0 for all.
  std::string quality = "medium";  ///< Or low, high, full.
  bool json = false;
  CGImageSourceLimits limits;
  std::string png;  ///< Where to draw the photo and its colours; empty for nowhere.
  std::optional<std::string> folder;  ///< The same for several.
};

constexpr double longestShown = 1024;  // the photo's side, in pixels

UIImageAnalyzeColorQuality qualityNamed(std::string_view name) {
  if (name == "low") return UIImageAnalyzeColorQuality::low;
  if (name == "high") return UIImageAnalyzeColorQuality::high;
  if (name == "full") return UIImageAnalyzeColorQuality::full;
  return UIImageAnalyzeColorQuality::medium;
}

unsigned byteOf(double component) { return static_cast<unsigned>(std::lround(component * 255)); }

void print(const std::vector<KvColor>& colors) {
  for (const KvColor& color : colors) {
    printLine(fmt::format("{}  {:3} {:3} {:3}", color.hexString(), byteOf(color.red),
                          byteOf(color.green), byteOf(color.blue)));
  }
}

Value jsonValue(const std::string& file, const UIImageAnalyzeResult& result) {
  Array colors;
  for (const KvColor& color : result.colors) {
    colors.push_back(Dictionary{{"hex", color.hexString()},
                                {"red", color.red},
                                {"green", color.green},
                                {"blue", color.blue}});
  }
  return Dictionary{{"file", file},
                    {"containsAlpha", result.containsAlpha},
                    {"colors", Value(std::move(colors))}};
}

/// The photo and, to the right, its colours from top to bottom, each as high as the others. In the
/// photo's colour space, whose components the colours are. Absent when memory is short.
std::optional<CGImage> pictureOf(const CGImage& photo, const std::vector<KvColor>& colors) {
  const auto width = static_cast<double>(photo.width());
  const auto height = static_cast<double>(photo.height());
  const std::size_t stripWidth =
      colors.empty() ? 0 : std::max<std::size_t>(std::min(photo.width(), photo.height()) / 4, 1);
  const CGColorSpace plain = CGColorSpace::createDeviceRGB();
  const auto components = CGImage::create(photo.layout(), plain, photo.pixels());
  const auto context =
      CGContext::createBitmap(photo.width() + stripWidth, photo.height(), photo.alphaInfo());
  if (!components || !context) return std::nullopt;
  context->drawImage(*components, {0, 0, width, height});
  const auto boundary = [&](std::size_t i) {  // above the colour, and below the one before it
    return height - std::ceil(height * static_cast<double>(i) / static_cast<double>(colors.size()));
  };
  for (std::size_t i = 0; i < colors.size(); ++i) {
    const KvColor& color = colors[i];
    context->setFillColor({color.red, color.green, color.blue, color.alpha});
    context->fillRect(
        {width, boundary(i + 1), static_cast<double>(stripWidth), boundary(i) - boundary(i + 1)});
  }
  const auto drawn = context->createImage();
  return drawn ? CGImage::create(drawn->layout(), *photo.colorSpace(), drawn->pixels())
               : std::nullopt;
}

bool draw(const PictureInput& input, const std::vector<KvColor>& colors,
          const CGImageSourceLimits& limits, const std::string& target) {
  Error error(NSPOSIXErrorDomain, ENOMEM);
  const std::optional<UIImage> photo =
      thumbnailForImageAtURL(input.url(), {longestShown, longestShown}, limits, &error);
  const std::optional<CGImage> picture =
      photo ? pictureOf(*photo->cgImage(), colors) : std::nullopt;
  if (picture) return writePicture(*picture, UTTypePNG, target);
  printProblem(input.name(), error);
  return false;
}

bool printPalette(const std::string& file, const Options& options,
                  std::optional<OutputFolder>& folder) {
  const std::optional<PictureInput> input = PictureInput::open(file, options.limits);
  if (!input) return false;
  Error error;
  const auto result = analyzeImageWithQuality(input->url(), qualityNamed(options.quality),
                                              options.count, options.limits, &error);
  if (!result) {
    printProblem(input->name(), error);
    return false;
  }
  if (options.json) {
    printLine(json(jsonValue(file, *result)));
  } else if (!isStandardOutput(options.png)) {
    if (options.files.size() > 1) printLine(input->name());
    print(result->colors);
  }
  if (!folder) {
    return options.png.empty() || draw(*input, result->colors, options.limits, options.png);
  }
  const std::string target = folder->claim(file, stemOf(file) + ".png");
  return !target.empty() && draw(*input, result->colors, options.limits, target);
}

bool printPalettes(const Options& options) {
  std::optional<OutputFolder> folder;
  if (options.folder) folder.emplace(*options.folder, options.files);
  return forEachFile(options.files, "looked at",
                     [&](const std::string& file) { return printPalette(file, options, folder); });
}

std::string problemOf(const Options& options) {
  if (!options.png.empty() && options.folder) return "--png and --out-dir exclude each other";
  if (!options.png.empty() && options.files.size() > 1) {
    return "--png takes one picture; give --out-dir for several";
  }
  if (options.json && isStandardOutput(options.png)) {
    return "--json and --png - both go to standard output";
  }
  return problemOfOutput(options.png, UTTypePNG);
}

}  // namespace

Command paletteCommand() {
  const auto options = std::make_shared<Options>();
  std::vector<Argument> arguments = {
      {"PHOTO", fileNames(options->files), "Pictures; - is standard input", true},
      {"-c,--count", wholeNumber(options->count, 0, 1000000, "COLORS"),
       "At most so many, 0 for all", false, "5"},
      {"-q,--quality", oneOf(options->quality, {"low", "medium", "high", "full"}),
       "How large the photo is looked at", false, options->quality},
      {"-j,--json", flag(options->json),
       R"({"file": ..., "containsAlpha": ..., "colors": [{"hex": ..., "red": 0 to 1, ...}]})"},
      {"--png", anyName(options->png, "FILE"),
       "Draw the photo and its colours; - is standard output, then without the list"},
      {"-O,--out-dir", anyName(options->folder, "FOLDER"), "The same for several photos"}};
  addLimits(arguments, options->limits);
  return {
      .name = "palette",
      .purpose = "Name photos' main colours",
      .arguments = std::move(arguments),
      .help =
          R"(The most frequent colour comes first, as "#RRGGBB" and as three numbers of 0 to 255; each differs
from those above it by more than a quarter in red, green or blue. Photos are reduced to 50, 100 or 250
pixels first, with full not at all. Grey and CMYK pictures have no answer. Of several photos each
list begins with the photo's name.

Examples:
  kvtool palette photo.jpg
  kvtool palette photo.jpg --count 8 --quality high --png palette.png
  kvtool palette *.jpg --out-dir palettes
  kvtool palette --json photo.jpg | jq -r '.colors[0].hex')",
      .check = [options] { return problemOf(*options); },
      .run = [options] { return printPalettes(*options); }};
}

}  // namespace kvtool
