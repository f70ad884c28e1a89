#include <tools/kvtool/colors/commands.h>
#include <tools/kvtool/console/console.h>
#include <tools/kvtool/files/picture_output.h>

#include <framework_utility/color/images/gradient_image.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <memory>

namespace kvtool {

using namespace FrameworkUtility;

namespace {

struct Options {
  std::string kind;
  std::vector<KvColor> colors;
  std::pair<int, int> size;  ///< Width and height in pixels.
  bool isVertical = false;
  std::string out;
};

/// "#RRGGBB" and commas.
Reader colors(std::vector<KvColor>& target, std::string shape) {
  return {std::move(shape), "like #FF8000,#0040FF", [&target](const std::string& text) {
            target.clear();
            for (std::size_t start = 0; start <= text.size();) {
              const std::size_t end = std::min(text.find(',', start), text.size());
              const std::string color = text.substr(start, end - start);
              const bool isColor =
                  color.size() == 7 && color[0] == '#' &&
                  color.find_first_not_of("0123456789abcdefABCDEF", 1) == std::string::npos;
              if (!isColor) return false;
              target.push_back(*KvColor::withHexString(color));
              start = end + 1;
            }
            return true;
          }};
}

/// "640x480"
Reader pixelSize(std::pair<int, int>& target, std::string shape) {
  constexpr int longest = 65535;
  return {std::move(shape), "like 640x480, up to 65535", [&target](const std::string& text) {
            const char* const end = text.data() + text.size();
            const auto width = std::from_chars(text.data(), end, target.first);
            if (width.ec != std::errc() || width.ptr == end || *width.ptr != 'x') return false;
            const auto height = std::from_chars(width.ptr + 1, end, target.second);
            const auto fits = [](int side) { return side >= 1 && side <= longest; };
            return height.ec == std::errc() && height.ptr == end && fits(target.first) &&
                   fits(target.second);
          }};
}

/// The sixth of the hue circle that a colour is nearest to; red's without one.
SelectiveHsl nearestHue(const std::vector<KvColor>& colors) {
  const double hue = colors.empty() ? 0 : colors.front().getHueSaturationLightness().hue;
  return static_cast<SelectiveHsl>(std::lround(hue * 6) % 6 + 1);
}

/// Evenly spaced from the middle to the corners.
std::optional<UIImage> radialImage(Size size, const std::vector<KvColor>& colors) {
  KvGradient gradient(colors, GradientDirection::horizontal);
  gradient.type = KvGradientType::radial;
  gradient.startPointNormalized = {0.5, 0.5};
  return generateGradientImageOfSize(size, 1, gradient);
}

std::optional<UIImage> draw(const Options& options) {
  const Size size{static_cast<double>(options.size.first),
                  static_cast<double>(options.size.second)};
  const auto direction =
      options.isVertical ? GradientDirection::vertical : GradientDirection::horizontal;
  const std::vector<KvColor>& colors = options.colors;
  if (options.kind == "linear") return generateGradientImageOfSize(size, direction, colors);
  if (options.kind == "radial") return radialImage(size, colors);
  if (options.kind == "conical") return conicalGradientImageWithColors(colors, size, 1);
  if (options.kind == "hue") return generateHueGradientImageOfSize(size, direction);
  if (options.kind == "lightness") {
    return generateSelectiveLightnessGradientImageOfSize(size, direction);
  }
  return selectiveHueGradientImageForType(nearestHue(colors), size, direction);
}

bool writeGradient(const Options& options) {
  const std::optional<UIImage> image = draw(options);
  if (!image) {
    printProblem(options.out, "there is not enough memory for so large a picture");
    return false;
  }
  return writePicture(*image->cgImage(), typeOfOutput(options.out).value_or(UTTypePNG),
                      options.out);
}

std::string problemOf(const Options& options) {
  const bool takesNone = options.kind == "hue" || options.kind == "lightness";
  if (takesNone && !options.colors.empty()) return "--colors is not for " + options.kind;
  if (!takesNone && options.kind != "selective" && options.colors.empty()) {
    return "--colors is missing";
  }
  return problemOfOutput(options.out, std::nullopt);
}

}  // namespace

Command gradientCommand() {
  const auto options = std::make_shared<Options>();
  return {
      .name = "gradient",
      .purpose = "Draw a gradient into a new picture",
      .arguments =
          {{"-k,--kind",
            oneOf(options->kind, {"linear", "radial", "conical", "hue", "lightness", "selective"}),
            "What it is", true},
           {"-c,--colors", colors(options->colors, "COLORS"), "Its colours: '#RRGGBB,#RRGGBB'"},
           {"-s,--size", pixelSize(options->size, "WIDTHxHEIGHT"), "Its pixels", true},
           {"--vertical", flag(options->isVertical), "From top to bottom, not from left to right"},
           {"-o,--out", anyName(options->out, "FILE"),
            "Where to write, under exactly this name; - is standard output", true}},
      .help =
          R"(linear, radial and conical space their colours evenly: from edge to edge, from the middle to the
corners, clockwise from three o'clock back to the first. hue runs through all hues, lightness from
black to white; selective through the hues about that of the first colour, red without one. The
extension of --out chooses PNG or JPEG; without one it is PNG.

Examples:
  kvtool gradient --kind linear --colors '#FF8000,#0040FF' --size 640x480 --vertical --out sky.png
  kvtool gradient -k conical -c '#FF0000,#FFFF00,#0000FF' -s 256x256 -o wheel.png
  kvtool gradient --kind selective --colors '#00C000' --size 512x32 --out greens.jpg)",
      .check = [options] { return problemOf(*options); },
      .run = [options] { return writeGradient(*options); }};
}

}  // namespace kvtool
