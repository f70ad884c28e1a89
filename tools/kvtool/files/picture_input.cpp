#include <tools/kvtool/files/picture_input.h>

#include <tools/kvtool/console/console.h>

#include <framework_utility/imageio/image_metadata.h>
#include <framework_utility/platform/foundation/file_error.h>
#include <framework_utility/platform/foundation/files.h>

#include <fmt/core.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string_view>

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
  if (total > most)
    printProblem("standard input", "there is more than 1 GiB");
  else
    printProblem("standard input", Error(NSPOSIXErrorDomain, errno));
  return nullptr;
}

/// The format that the bytes begin like, among those that are not read here; empty for none.
std::string_view foreignFormat(std::string_view bytes) {
  const auto at = [&](std::size_t offset, std::string_view mark) {
    return bytes.size() >= offset && bytes.substr(offset).starts_with(mark);
  };
  if (at(4, "ftyp")) {
    for (const std::string_view brand : {"heic", "heix", "heim", "heis", "hevc", "mif1", "msf1"})
      if (at(8, brand)) return "HEIC";
    if (at(8, "avif") || at(8, "avis")) return "AVIF";
    return "a film";
  }
  if (at(0, "GIF8")) return "GIF";
  if (at(0, "RIFF") && at(8, "WEBP")) return "WebP";
  if (at(0, {"II*\0", 4}) || at(0, {"MM\0*", 4})) return "TIFF";
  if (at(0, "BM")) return "BMP";
  if (at(0, "%PDF")) return "PDF";
  if (at(0, "<svg") || at(0, "<?xml")) return "SVG";
  return "";
}

std::string wordsOf(CGImageSourceStatus status, const FileReader& file) {
  if (file.size() == 0) return "the file is empty";
  if (status == CGImageSourceStatus::incomplete) return "the file is cut off";
  if (status != CGImageSourceStatus::unknownType) return "the file is damaged";
  std::array<std::byte, 64> start{};
  const std::size_t count = file.readAt(0, start, nullptr).value_or(0);
  const std::string_view format =
      foreignFormat({reinterpret_cast<const char*>(start.data()), count});
  return format.empty() ? "that is no picture" : fmt::format("{} is not read here", format);
}

}  // namespace

std::optional<PictureInput> PictureInput::open(const std::string& name) {
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
  const auto file = FileManager::defaultManager().openFileAtPath(input.path_, &error);
  if (file) input.source_ = CGImageSource::createWithURL(input.url());
  if (!input.source_) {
    printProblem(input.name_, error);
    return std::nullopt;
  }
  const CGImageSourceStatus status = input.source_->status();
  if (status == CGImageSourceStatus::complete) return input;
  const ErrorCode& code = KvImageMetadataError::sourceNotComplete;
  printProblem(input.name_,
               fmt::format("{} ({} {})", wordsOf(status, *file), code.domain, code.code));
  return std::nullopt;
}

}  // namespace kvtool
