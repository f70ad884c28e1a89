#include <tools/kvtool/files/picture_input.h>

#include <tools/kvtool/console/console.h>

#include <framework_utility/imageio/image_metadata.h>
#include <framework_utility/platform/foundation/files/file_error.h>

#include <fmt/core.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>

namespace kvtool {

using namespace FrameworkUtility;

namespace {

/// Copies standard input into a file without a name, which goes with the process however it ends.
std::shared_ptr<std::FILE> spooledInput() {
  constexpr std::size_t most = std::size_t{1} << 30;
  const std::shared_ptr<std::FILE> spool(std::tmpfile(),
                                         [](std::FILE* file) { file ? std::fclose(file) : 0; });
  std::array<std::byte, 1 << 16> bytes{};
  std::size_t total = 0;
  bool worked = spool != nullptr;
  while (worked) {
    const std::size_t count = std::fread(bytes.data(), 1, bytes.size(), stdin);
    if (count == 0) break;
    total += count;
    worked = total <= most && std::fwrite(bytes.data(), 1, count, spool.get()) == count;
  }
  if (worked && !std::ferror(stdin) && std::fflush(spool.get()) == 0) return spool;
  if (total > most) {
    printProblem("standard input", "there is more than 1 GiB");
  } else {
    printProblem("standard input", Error(NSPOSIXErrorDomain, errno));
  }
  return nullptr;
}

}  // namespace

std::optional<PictureInput> PictureInput::open(const std::string& name,
                                               const CGImageSourceLimits& limits) {
  PictureInput input;
  input.name_ = name == "-" ? "standard input" : name;
  input.path_ = name;
  if (name == "-") {
    const std::shared_ptr<std::FILE> spool = spooledInput();
    if (!spool) return std::nullopt;
    input.path_ = fmt::format("/proc/self/fd/{}", fileno(spool.get()));
    input.spool_ = spool;
  }
  Error error;
  input.source_ = CGImageSource::createWithURL(input.url(), {.limits = limits}, &error);
  if (input.source_ && input.source_->status() == CGImageSourceStatus::complete) return input;
  if (input.source_) (void)KvImageMetadata::withImageSource(input.source_, &error);
  printProblem(input.name_, error);
  return std::nullopt;
}

void addLimits(std::vector<Argument>& arguments, CGImageSourceLimits& limits,
               const std::string& mostMemory) {
  arguments.push_back({"--max-pixels",
                       amount(limits.mostPixels, {{"", 1}, {"M", 1'000'000}}, "PIXELS"),
                       "Refuse larger pictures: 50000000, 50M", false, "536870912"});
  arguments.push_back(
      {"--max-memory",
       amount(limits.mostMemory, {{"", 1}, {"KiB", 1 << 10}, {"MiB", 1 << 20}, {"GiB", 1 << 30}},
              "BYTES"),
       "Refuse pictures that take more to decode: 300MiB, 1GiB", false, mostMemory});
}

}  // namespace kvtool
