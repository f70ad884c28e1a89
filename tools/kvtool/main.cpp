// kvtool: the library's operations at a terminal.

#include <tools/kvtool/commands.h>
#include <tools/kvtool/console.h>
#include <tools/kvtool/number_pair.h>

// The only place that includes it: it compiles slowly.
#include <CLI/CLI.hpp>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <limits>

namespace {

constexpr int usageError = 2;

void addMetadata(CLI::App& tool, kvtool::MetadataOptions& options, bool& worked) {
  CLI::App* command = tool.add_subcommand("metadata", "Show what image files say of themselves");
  command->add_option("FILE", options.files, "Image files")->required();
  command->add_flag("--json", options.json, "One JSON object a line and file");
  command->footer(
      R"(Reads the files' metadata only, never their pixels. The facts come first, each only when it is
known; then all properties under the platform's names. With --json an object has the members
"file", "properties" and "facts"; bytes are {"base64": "..."}.

Examples:
  kvtool metadata photo.jpg
  kvtool metadata --json *.jpg | jq -r '[.file, .facts.model, .facts.date] | @tsv'
  kvtool metadata --json photo.jpg | jq '.properties["{GPS}"]')");
  command->callback([&] { worked = kvtool::printMetadata(options); });
}

void addSave(CLI::App& tool, kvtool::SaveOptions& options, bool& worked) {
  CLI::App* command = tool.add_subcommand("save", "Save a picture again, with changed metadata");
  command->add_option("FILE", options.file, "The picture")->required();
  command->add_option("--orientation", options.orientation, "EXIF orientation")
      ->check(CLI::Range(1, 8));
  command->add_option("--date", options.date,
                      "When it was taken and digitised, in UTC: 2024-05-06T07:08:09Z");
  command->add_option("--software", options.software, "The program that made it");
  command->add_option("--location", options.location,
                      "Where it was taken: LATITUDE,LONGITUDE in degrees, south and west negative");
  command->add_flag("--remove-live-photo", options.removeLivePhoto,
                    "Forget which video belongs to it");
  command->add_option("--quality", options.quality, "0 (smallest) to 1 (best); else 0.85")
      ->check(CLI::Range(0.0, 1.0));
  command->add_option("--type", options.type,
                      "jpeg, png, heic, or a type's identifier; else PNG for PNG and JPEG for all "
                      "others");
  command->add_option("--session", options.session, "The editing session that it belongs to")
      ->capture_default_str();
  command->footer(
      R"help(Writes a new file into a new folder of the session, below the temporary directory, and prints its
path. Metadata that is not changed stays as it is in FILE, which itself is never changed. HEIC
becomes JPEG where nothing encodes it. A date is stored as your zone's wall clock, as apps do it,
and read as UTC: with TZ=UTC it reads back as given.

Examples:
  kvtool save photo.jpg --orientation 1 --software "Pelvar 7.1"
  kvtool save photo.jpg --location 48.2082,16.3738 --date 2024-05-17T09:30:00Z
  kvtool save photo.jpg --location -33.86,151.21 --remove-live-photo
  xdg-open "$(kvtool save photo.png --type jpeg --quality 0.7 --session Editor-1)")help");
  command->callback([&] { worked = kvtool::save(options); });
}

void addThumbnail(CLI::App& tool, kvtool::ThumbnailOptions& options, bool& worked) {
  CLI::App* command = tool.add_subcommand("thumbnail", "Write a small upright copy of a picture");
  command->add_option("FILE", options.file, "The picture")->required();
  command->add_option("--size", options.size, "The longer side, in pixels")
      ->required()
      ->check(CLI::Range(1, 65535));
  command->add_option("--out", options.out, "The file to write, under exactly this name")
      ->required();
  command->footer(
      R"(Never enlarges. The extension of --out chooses the format; without one it is JPEG. A file of that
name is replaced.

Examples:
  kvtool thumbnail photo.jpg --size 256 --out small.jpg
  for f in *.jpg; do kvtool thumbnail "$f" --size 160 --out "thumbs/${f%.jpg}.png"; done)");
  command->callback([&] { worked = kvtool::writeThumbnail(options); });
}

/// A required option of two numbers above `bound`.
void addPair(CLI::App& command, const std::string& name, std::pair<double, double>& numbers,
             double bound, const std::string& what) {
  const auto read = [&numbers, name, bound](const std::string& text) {
    const auto pair = kvtool::numberPair(text);
    if (!pair || !(pair->first > bound && pair->second > bound))
      throw CLI::ValidationError(name, "\"" + text + "\" is not like 300,200");
    numbers = *pair;
  };
  command.add_option_function<std::string>(name, read, what)->required();
}

void addCover(CLI::App& tool, kvtool::CoverOptions& options, bool& worked) {
  CLI::App* command = tool.add_subcommand(
      "cover", "Find how large a turned picture must be shown to cover a crop area");
  addPair(*command, "--area", options.area, 0, "The crop area at 0,0: WIDTH,HEIGHT");
  addPair(*command, "--content", options.content, 0, "The picture's proportions: WIDTH,HEIGHT");
  addPair(*command, "--center", options.center, -std::numeric_limits<double>::infinity(),
          "What the picture is turned about: X,Y");
  command->add_option("--angle", options.angle, "By how much, in radians, counterclockwise")
      ->required();
  command->add_flag("--json", options.json,
                    R"({"p1": [x, y], ...}, with digits that read back as the same numbers)");
  command->add_option("--svg", options.svg, "Draw both into a file of this name");
  command->footer(
      R"(Prints the corners of the smallest such picture, clockwise from its top left one, y downwards, then
its size, and its zoom: how many times it is as wide as the smallest upright one. For a whole or half
turn, 0 included, the answer is that upright one at 0,0, whatever the center.

Examples:
  kvtool cover --area 300,200 --content 4032,3024 --center 150,100 --angle 0.12
  kvtool cover --area 3,2 --content 4,3 --center 1.5,1 --angle -0.5 --svg cover.svg
  kvtool cover --json --area 3,2 --content 4,3 --center 1.5,1 --angle 0.5 | jq .p1[0])");
  command->callback([&] { worked = kvtool::printCover(options); });
}

void addPalette(CLI::App& tool, kvtool::PaletteOptions& options, bool& worked) {
  CLI::App* command = tool.add_subcommand("palette", "Name a photo's main colours");
  command->add_option("PHOTO", options.file, "The picture")->required();
  command->add_option("--count", options.count, "At most so many colours, 0 for all")
      ->check(CLI::NonNegativeNumber)
      ->capture_default_str();
  command->add_option("--quality", options.quality, "How large the photo is looked at")
      ->check(CLI::IsMember({"low", "medium", "high", "full"}))
      ->capture_default_str();
  command->add_flag("--json", options.json,
                    R"({"containsAlpha": …, "colors": [{"hex": …, "red": …, …}]}, 0 to 1)");
  command->add_option("--png", options.png, "Draw the photo and its colours into a PNG file");
  command->footer(
      R"(The most frequent colour comes first, as "#RRGGBB" and as three numbers of 0 to 255; each differs
from those above it by more than a quarter in red, green or blue. Photos are reduced to 50, 100 or 250
pixels first, with full not at all. Grey and CMYK pictures have no answer.

Examples:
  kvtool palette photo.jpg
  kvtool palette photo.jpg --count 8 --quality high --png palette.png
  kvtool palette --json photo.jpg | jq -r '.colors[0].hex')");
  command->callback([&] { worked = kvtool::printPalette(options); });
}

/// Reads "#RRGGBB"; what CLI11 asks for is what is wrong with it.
std::string checkColor(const std::string& text) {
  const bool isColor = text.size() == 7 && text[0] == '#' &&
                       text.find_first_not_of("0123456789abcdefABCDEF", 1) == std::string::npos;
  return isColor ? "" : "\"" + text + "\" is not like #FF8000";
}

/// Reads "640x480".
std::pair<int, int> sizeFrom(const std::string& text) {
  constexpr int longest = 65535;
  std::pair<int, int> size;
  const char* const end = text.data() + text.size();
  const auto width = std::from_chars(text.data(), end, size.first);
  const bool hasTwo = width.ec == std::errc() && width.ptr != end && *width.ptr == 'x';
  const auto height = hasTwo ? std::from_chars(width.ptr + 1, end, size.second) : width;
  if (!hasTwo || height.ec != std::errc() || height.ptr != end || size.first < 1 ||
      size.first > longest || size.second < 1 || size.second > longest)
    throw CLI::ValidationError("--size", "\"" + text + "\" is not like 640x480, up to 65535");
  return size;
}

void checkColorCount(const kvtool::GradientOptions& options) {
  const bool takesNone = options.kind == "hue" || options.kind == "lightness";
  if (takesNone && !options.colors.empty())
    throw CLI::ValidationError("--colors", options.kind + " takes none");
  if (!takesNone && options.kind != "selective" && options.colors.empty())
    throw CLI::RequiredError("--colors");
}

void addGradient(CLI::App& tool, kvtool::GradientOptions& options, bool& worked) {
  CLI::App* command = tool.add_subcommand("gradient", "Draw a gradient into a new picture");
  command->add_option("--kind", options.kind, "What it is")
      ->required()
      ->check(CLI::IsMember({"linear", "radial", "conical", "hue", "lightness", "selective"}));
  command->add_option("--colors", options.colors, "Its colours: '#RRGGBB,#RRGGBB'")
      ->delimiter(',')
      ->check(checkColor);
  command
      ->add_option_function<std::string>(
          "--size", [&options](const std::string& text) { options.size = sizeFrom(text); },
          "Its pixels: WIDTHxHEIGHT")
      ->required();
  command->add_flag("--vertical", options.isVertical, "From top to bottom, not from left to right");
  command->add_option("--out", options.out, "The file to write, under exactly this name")
      ->required();
  command->footer(
      R"(linear, radial and conical space their colours evenly: from edge to edge, from the middle to the
corners, clockwise from three o'clock back to the first. hue runs through all hues, lightness from
black to white; selective through the hues about that of the first colour, red without one. The
extension of --out chooses PNG or JPEG; without one it is PNG. A file of that name is replaced.

Examples:
  kvtool gradient --kind linear --colors '#FF8000,#0040FF' --size 640x480 --vertical --out sky.png
  kvtool gradient --kind conical --colors '#FF0000,#FFFF00,#0000FF' --size 256x256 --out wheel.png
  kvtool gradient --kind selective --colors '#00C000' --size 512x32 --out greens.jpg)");
  command->callback([&] {
    checkColorCount(options);
    worked = kvtool::writeGradient(options);
  });
}

int run(int argc, char** argv) {
  CLI::App tool{
      "Reads, rewrites, reduces, straightens and names the colours of photos, and draws gradients, "
      "the way the apps of the family do.",
      "kvtool"};
  tool.footer(
      R"(Exit code: 0 when everything worked, 1 when a file failed (the others still go on), 2 for a command
line that cannot be understood. "kvtool COMMAND --help" shows a command's options and examples.

Examples:
  kvtool metadata photo.jpg
  kvtool save photo.jpg --orientation 1
  kvtool thumbnail photo.jpg --size 256 --out small.jpg
  kvtool cover --area 300,200 --content 4032,3024 --center 150,100 --angle 0.12
  kvtool palette photo.jpg --png palette.png
  kvtool gradient --kind hue --size 512x32 --out hues.png)");
  tool.require_subcommand(1);

  kvtool::MetadataOptions metadata;
  kvtool::SaveOptions save;
  kvtool::ThumbnailOptions thumbnail;
  kvtool::CoverOptions cover;
  kvtool::PaletteOptions palette;
  kvtool::GradientOptions gradient;
  bool worked = false;
  addMetadata(tool, metadata, worked);
  addSave(tool, save, worked);
  addThumbnail(tool, thumbnail, worked);
  addCover(tool, cover, worked);
  addPalette(tool, palette, worked);
  addGradient(tool, gradient, worked);
  try {
    tool.parse(argc, argv);
  } catch (const CLI::ParseError& problem) {
    return tool.exit(problem) == 0 ? EXIT_SUCCESS : usageError;
  }
  if (!kvtool::flushOutput()) {
    kvtool::printProblem("standard output", "cannot be written");
    return EXIT_FAILURE;
  }
  return worked ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& problem) {  // no memory, for example
    std::fprintf(stderr, "kvtool: %s\n", problem.what());
    return EXIT_FAILURE;
  }
}
