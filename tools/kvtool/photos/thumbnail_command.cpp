#include <tools/kvtool/console/console.h>
#include <tools/kvtool/files/output.h>
#include <tools/kvtool/files/picture_input.h>
#include <tools/kvtool/files/picture_output.h>
#include <tools/kvtool/files/targets.h>
#include <tools/kvtool/photos/commands.h>

#include <framework_utility/imageio/image_writer.h>

namespace kvtool {

using namespace FrameworkUtility;

namespace {

struct Options {
  std::vector<std::string> files;
  int size = 0;  ///< The longer side, in pixels.
  CGImageSourceLimits limits = {.mostMemory = std::uint64_t{512} << 20};
  Targets targets;
};

bool writeThumbnail(const std::string& file, const Options& options, TargetNames& names) {
  const std::optional<PictureInput> input = PictureInput::open(file, options.limits);
  if (!input) return false;
  const double side = options.size;
  Error error;
  const std::optional<UIImage> thumbnail =
      thumbnailForImageAtURL(input->url(), {side, side}, options.limits, &error);
  if (!thumbnail) {
    printProblem(input->name(), error);
    return false;
  }
  const UTType type = options.targets.type().value_or(usualType(*input));
  const std::string target = names.nameFor(file, type);
  if (target.empty() || !writePicture(*thumbnail->cgImage(), type, target)) return false;
  if (options.targets.folder) printLine(target);
  return true;
}

}  // namespace

Command thumbnailCommand() {
  const auto options = std::make_shared<Options>();
  std::vector<Argument> arguments = {
      {"FILE", fileNames(options->files), "Pictures; - is standard input", true},
      {"-s,--size", wholeNumber(options->size, 1, 65535, "PIXELS"), "The longer side", true}};
  addTargets(arguments, options->targets);
  addLimits(arguments, options->limits, "512MiB");
  return {
      .name = "thumbnail",
      .purpose = "Write small upright copies of pictures",
      .arguments = std::move(arguments),
      .help =
          R"(Never enlarges. The extension of --out chooses the format; without one, and in --out-dir, it is PNG
for PNG and JPEG for all others. The paths of what is written into --out-dir are printed.

Examples:
  kvtool thumbnail photo.jpg --size 256 --out small.jpg
  kvtool thumbnail *.jpg -s 160 --out-dir thumbs --type png
  kvtool thumbnail - -s 64 -o - <photo.jpg >icon.jpg)",
      .check =
          [options] {
            const std::string problem = problemOf(options->targets, options->files.size());
            const bool isGiven = options->targets.out || options->targets.folder;
            return problem.empty() && !isGiven ? "--out or --out-dir is missing" : problem;
          },
      .run =
          [options] {
            TargetNames names(options->targets, options->files);
            return forEachFile(options->files, "reduced", [&](const std::string& file) {
              return writeThumbnail(file, *options, names);
            });
          }};
}

}  // namespace kvtool
