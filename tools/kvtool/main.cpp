// kvtool: the library's operations at a terminal.

#include <tools/kvtool/colors/commands.h>
#include <tools/kvtool/console/command_line.h>
#include <tools/kvtool/console/console.h>
#include <tools/kvtool/geometry/commands.h>
#include <tools/kvtool/photos/commands.h>

#include <framework_utility/platform/locale/locale.h>
#include <framework_utility/platform/locale/time_zone.h>

#include <cstdlib>
#include <exception>
#include <new>

int main(int argc, char** argv) {
  using namespace kvtool;
  try {
    // Dates in files are the camera's clock, in digits and a calendar that every program reads,
    // whatever the user's locale and zone.
    const FrameworkUtility::ScopedLocale locale(FrameworkUtility::Locale("POSIX"));
    const FrameworkUtility::ScopedTimeZone zone(FrameworkUtility::TimeZone::utc());

    const ToolText text{
        .name = "kvtool",
        .version = KVTOOL_VERSION,
        .purpose =
            "Reads, rewrites, reduces, straightens and names the colours of photos, and\n"
            "draws gradients, the way the apps of the family do.",
        .help =
            R"(Exit code: 0 when everything worked, 1 when a file failed (the others still go on), 2 for a command
line that cannot be understood. "kvtool COMMAND --help" shows a command's options and examples.

Where a result is written, a file is replaced by the whole new one or stays, a link's target likewise;
pipes and devices are written to, and - is standard output.

Examples:
  kvtool metadata photo.jpg
  kvtool save photo.jpg --orientation 1
  kvtool thumbnail photo.jpg --size 256 --out small.jpg
  kvtool cover --area 300,200 --content 4032,3024 --center 150,100 --angle 0.12
  kvtool palette photo.jpg --png palette.png
  kvtool gradient --kind hue --size 512x32 --out hues.png)"};
    const Command commands[] = {metadataCommand(), saveCommand(),    thumbnailCommand(),
                                coverCommand(),    paletteCommand(), gradientCommand()};
    return runCommandLine(text, commands, argc, argv);
  } catch (const std::bad_alloc&) {
    printProblem("there is not enough memory");
  } catch (const std::exception& problem) {
    printProblem(problem.what());
  }
  return EXIT_FAILURE;
}
