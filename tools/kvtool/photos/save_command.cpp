#include <tools/kvtool/console/console.h>
#include <tools/kvtool/files/output.h>
#include <tools/kvtool/files/picture_input.h>
#include <tools/kvtool/files/picture_output.h>
#include <tools/kvtool/files/targets.h>
#include <tools/kvtool/photos/commands.h>
#include <tools/kvtool/photos/edits.h>

#include <framework_utility/imageio/contained_path.h>
#include <framework_utility/imageio/session_manager.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/foundation/values/path.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

namespace kvtool {

using namespace FrameworkUtility;

namespace {

struct Options {
  std::vector<std::string> files;
  Edits edits;
  std::optional<double> quality;  ///< In 0...1.
  CGImageSourceLimits limits;
  Targets targets;
  std::string session = "kvtool";
};

/// Into a new folder of the session, which goes again when the file cannot be written.
bool writeIntoSession(const Data& bytes, const std::string& file, const UTType& type,
                      const Options& options) {
  const auto folder = KvSessionManager::getNewValidFolderPathForSessionIdentifier(options.session);
  if (!folder) {
    printProblem(file, "the session's folder cannot be made");
    return false;
  }
  // As the library's writers name their files: "a.v1" is a name with an extension too.
  const std::string name =
      appendingPathExtensionForType(paths::deletingPathExtension(stemOf(file)), type);
  const std::string path = paths::appendingPathComponent(*folder, name);
  if (writeOutput(bytes, path)) {
    printLine(path);
    return true;
  }
  FileManager::defaultManager().removeEmptyDirectoryAtPath(*folder, nullptr);
  return false;
}

bool saveFile(const std::string& file, const Options& options, TargetNames& names) {
  const std::optional<PictureInput> input = PictureInput::open(file, options.limits);
  if (!input) return false;
  Error error;
  const auto metadata = KvImageMetadata::withImageSource(input->source(), &error);
  if (!metadata) {
    printProblem(input->name(), error);
    return false;
  }
  const std::optional<CGImage> image = input->source().imageAtIndex(0, &error);
  if (!image) {
    printProblem(input->name(), error);
    return false;
  }
  Dictionary properties = edited(*metadata, options.edits);
  if (options.quality) properties.set(kCGImageDestinationLossyCompressionQuality, *options.quality);
  const UTType type = options.targets.type().value_or(usualType(*input));
  const std::optional<Data> bytes = encodedPicture(*image, type, input->name(), properties,
                                                   input->source().metadataBlocksAtIndex(0));
  if (!bytes) return false;
  if (!options.targets.out && !options.targets.folder) {
    return writeIntoSession(*bytes, file, type, options);
  }
  const std::string target = names.nameFor(file, type);
  if (target.empty() || !writeOutput(*bytes, target)) return false;
  if (options.targets.folder) printLine(target);
  return true;
}

std::string problemOf(const Options& options) {
  if (!detail::staysInFolder(options.session)) {
    return "--session is a name, not \"" + options.session + "\"";
  }
  return problemOf(options.targets, options.files.size());
}

}  // namespace

Command saveCommand() {
  const auto options = std::make_shared<Options>();
  Edits& edits = options->edits;
  std::vector<Argument> arguments = {
      {"FILE", fileNames(options->files), "Pictures; - is standard input", true},
      {"-r,--orientation", wholeNumber(edits.orientation, 1, 8, "1-8"), "EXIF orientation"},
      {"-d,--date", photoDate(edits.date, "DATE"),
       "When it was taken, by the camera's clock: 2024-05-06T07:08:09[+02:00]"},
      {"--software", anyText(edits.software, "TEXT"), "The program that made it"},
      {"-l,--location", place(edits.place, "LAT,LON[,ALT]"),
       "Where it was taken: degrees, south and west negative, and metres"},
      {"--remove-live-photo", flag(edits.removesLivePhoto), "Forget which video belongs to it"},
      {"-q,--quality", fraction(options->quality, "0-1"), "Smallest to best; else 0.85"}};
  addTargets(arguments, options->targets);
  arguments.push_back({"--session", anyName(options->session, "NAME"),
                       "The editing session that it belongs to", false, options->session});
  addLimits(arguments, options->limits);
  return {
      .name = "save",
      .purpose = "Save pictures again, with changed metadata",
      .arguments = std::move(arguments),
      .help =
          R"help(Writes each picture to --out or into --out-dir; else into a new folder of the session, below the
temporary directory, and prints its path. Metadata that is not changed stays as it is in FILE. The
extension of --out chooses the format; without one, and elsewhere, it is PNG for PNG and JPEG for all
others. HEIC becomes JPEG where nothing encodes it. --date sets when it was taken and digitised, and
where it has no offset ("Z" is one) removes the one that the file has; --location changes the altitude
only where it is given.

Examples:
  kvtool save photo.jpg --orientation 1 --software "Pelvar 7.1" --out turned.jpg
  kvtool save *.jpg --location 48.2082,16.3738,171 --date 2024-05-17T09:30:00+02:00 -O placed
  kvtool save photo.jpg -l -33.86,151.21 --remove-live-photo
  kvtool save - -r 6 -o - <photo.jpg >turned.jpg
  xdg-open "$(kvtool save photo.png --type jpeg --quality 0.7 --session Editor-1)")help",
      .check = [options] { return problemOf(*options); },
      .run =
          [options] {
            TargetNames names(options->targets, options->files);
            return forEachFile(options->files, "saved", [&](const std::string& file) {
              return saveFile(file, *options, names);
            });
          }};
}

}  // namespace kvtool
