#include <tests/kvtool/kvtool_test.h>

#include <filesystem>
#include <fstream>
#include <utility>
#include <vector>

namespace FrameworkUtility {
namespace {

namespace fs = std::filesystem;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using testing::ProgramResult;
using ::testing::StartsWith;

constexpr char pngMark[] = "\x89PNG";
constexpr char jpegMark[] = "\xFF\xD8\xFF";

/// Where each command writes to, which goes behind it.
struct Writer {
  std::string command;
  std::string beginning;  // of what it writes
};

const Writer writers[] = {
    {"cover --area 3,2 --content 4,3 --center 1,1 --angle 1 --svg ", "<svg "},
    {"gradient --kind hue --size 4x4 --out ", pngMark},
    {"palette a.png --png ", pngMark},
    {"save a.png --out ", pngMark},
    {"save a.png --type jpeg -o ", jpegMark},
    {"thumbnail a.png -s 3 -o ", pngMark},
};

class OutputTest : public testing::KvtoolTest {
 protected:
  OutputTest() { write("a.png", testing::redAndBlue(20, 10), "png"); }
};

TEST_F(OutputTest, StandardOutputGetsTheResultAndNothingElse) {
  for (const auto& [command, beginning] : writers) {
    SCOPED_TRACE(command);
    const std::string result = output(command + "-");
    EXPECT_THAT(result, StartsWith(beginning));
    EXPECT_EQ(run(command + "/dev/stdout").output, result);
    EXPECT_FALSE(fs::exists(path("-")));
    EXPECT_EQ(run(command + "file").exitCode, 0);
    EXPECT_EQ(contents("file"), result);
    fs::remove(path("file"));
  }
}

TEST_F(OutputTest, PipesAndDevicesAreWrittenThrough) {
  for (const auto& [command, beginning] : writers) {
    SCOPED_TRACE(command);
    const ProgramResult result =
        runLine("mkfifo pipe && { timeout 20 cat pipe & timeout 20 " + tool + command +
                "pipe; code=$?; wait; test -p pipe && rm pipe && exit $code; }");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.problems, "");
    EXPECT_THAT(result.output, HasSubstr(beginning));
  }
  // By a link of our own: whatever happens to it, the device itself is nobody's to replace here.
  fs::create_symlink("/dev/full", path("full"));
  const ProgramResult full = run("thumbnail a.png -s 3 -o full");
  EXPECT_EQ(full.exitCode, 1);
  EXPECT_EQ(full.problems,
            "kvtool: full: there is no space left on the disk (NSPOSIXErrorDomain 28)\n");
  EXPECT_TRUE(fs::is_symlink(path("full")));
}

TEST_F(OutputTest, ALinksTargetIsReplaced) {
  fs::create_directory(path("folder"));
  for (const auto& [command, beginning] : writers) {
    SCOPED_TRACE(command);
    fs::create_symlink("folder/second", path("first"));
    fs::create_symlink("target", path("folder/second"));
    for (const bool isThere : {false, true}) {
      if (isThere) std::ofstream(path("folder/target")) << "old";
      EXPECT_EQ(run(command + "first").exitCode, 0);
      EXPECT_TRUE(fs::is_symlink(path("first")) && fs::is_symlink(path("folder/second")));
      EXPECT_THAT(contents("folder/target"), StartsWith(beginning));
    }
    for (const char* name : {"first", "folder/second", "folder/target"}) fs::remove(path(name));
  }
  fs::create_symlink("round", path("round"));
  EXPECT_THAT(run(writers[0].command + "round").problems, HasSubstr("round: "));
  EXPECT_TRUE(fs::is_symlink(path("round")));
}

TEST_F(OutputTest, StandardInputIsReadLikeAFile) {
  for (const std::string command :
       {"save -o -", "thumbnail -s 3 -o -", "palette -q full -c 1", "metadata"}) {
    std::string expected = output(command + " a.png");
    if (command == "metadata") expected.replace(0, 5, "standard input");
    EXPECT_EQ(runLine("cat a.png | " + tool + command + " -").output, expected) << command;
    EXPECT_EQ(run(command + " - <a.png").output, expected) << command;
  }
  EXPECT_THAT(output("metadata -j - <a.png"), StartsWith(R"({"file": "-", )"));
  EXPECT_THAT(output("save - <a.png"), EndsWith("/stdin.png\n"));
  EXPECT_THAT(run("metadata - </dev/null").problems,
              HasSubstr("standard input: the file is empty"));
}

TEST_F(OutputTest, CausesAreToldInPlainWords) {
  const std::pair<std::string, std::string> files[] = {
      {"heic", std::string("\0\0\0\x18"
                           "ftypheic",
                           12)},
      {"webp", "RIFF\1\2\3\4WEBP"},
      {"gif", "GIF89a"},
      {"text", "words"},
      {"nothing", ""},
      {"cut", std::string("\xFF\xD8\xFF\xE1\xFF\xFF", 6)}};
  for (const auto& [name, bytes] : files) std::ofstream(path(name), std::ios::binary) << bytes;
  const CGImageLayout onePixel{.width = 1,
                               .height = 1,
                               .bitsPerPixel = 8,
                               .bytesPerRow = 1,
                               .alphaInfo = CGImageAlphaInfo::none};
  write("grey.png",
        *CGImage::create(onePixel, CGColorSpace::createDeviceGray(),
                         Data(std::vector(1, std::byte{9}))),
        "png");
  const std::pair<std::string, std::string> cases[] = {
      {"metadata none.jpg", "none.jpg: there is no such file (NSCocoaErrorDomain 260)"},
      {"metadata .", ".: that is a folder, not a file (NSCocoaErrorDomain 256)"},
      {"metadata /dev/null", "/dev/null: that is a pipe or a device"},
      {"thumbnail heic -s 3 -o x",
       "heic: HEIC is not read here (NSTervixKvImageMetadataErrorDomain 4)"},
      {"save webp", "webp: WebP is not read here"},
      {"palette gif", "gif: GIF is not read here"},
      {"metadata text", "text: the file is not an image"},
      {"metadata nothing", "nothing: the file is empty"},
      {"metadata cut", "cut: the file is cut off"},
      {"thumbnail a.png -s 3 -o x --max-pixels 9",
       "a.png: the image has 200 pixels, more than the limit of 9 (NSCocoaErrorDomain 263)"},
      {"save a.png --max-memory 900", "a.png: the image takes"},
      {"save a.png -o no/x.png", "no/x.png: there is no such folder (NSCocoaErrorDomain 4)"},
      {"palette a.png --png a.png/x.png", "a.png/x.png: a part of the path is a file"},
      {"palette grey.png", "grey.png: the image has no pixels in red, green and blue"},
      {"gradient --kind hue --size 65535x65535 --out x", "x: there is not enough memory"},
      {"cover --area 3,2 --content 4,3 --center 0,0 --angle 1 --svg no/x.svg",
       "no/x.svg: there is no such folder"},
      {"cover --area 3,2 --content 4,3 --center 1e308,-1e308 --angle 1",
       "cover: these numbers have no cover that is a number"},
      {"metadata a.png >/dev/full", "standard output: there is no space left on the disk"}};
  for (const auto& [arguments, problem] : cases) {
    SCOPED_TRACE(arguments);
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.problems, StartsWith("kvtool: " + problem));
  }
  EXPECT_FALSE(fs::exists(path("x")));
}

TEST_F(OutputTest, ManyFilesEndInASummary) {
  write("b.jpg", testing::redAndBlue(20, 10), "jpeg");
  fs::create_directory(path("more"));
  fs::copy_file(path("b.jpg"), path("more/b.jpg"));

  const ProgramResult reduced = run("thumbnail a.png none.jpg b.jpg -s 3 --out-dir new/small");
  EXPECT_EQ(reduced.exitCode, 1);
  EXPECT_EQ(reduced.output, "new/small/a.png\nnew/small/b.jpg\n");
  EXPECT_THAT(reduced.problems, EndsWith("\nkvtool: 2 of 3 reduced, 1 failed\n"));

  const ProgramResult saved = run("save a.png b.jpg more/b.jpg -O saved -t jpeg");
  EXPECT_EQ(saved.output, "saved/a.jpeg\nsaved/b.jpg\n");
  EXPECT_THAT(saved.problems, HasSubstr("more/b.jpg: saved/b.jpg is the result of another file"));

  const ProgramResult palettes = run("palette a.png b.jpg -q full -c 1 -O .");
  EXPECT_EQ(palettes.exitCode, 1);
  EXPECT_THAT(palettes.output, StartsWith("a.png\n#FF0000  255   0   0\nb.jpg\n#"));
  EXPECT_THAT(palettes.problems, StartsWith("kvtool: a.png: ./a.png would be replaced"));
  EXPECT_THAT(contents("b.png"), StartsWith(pngMark));

  EXPECT_EQ(run("save a.png b.jpg").problems, "kvtool: 2 of 2 saved\n");
}

}  // namespace
}  // namespace FrameworkUtility
