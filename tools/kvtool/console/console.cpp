#include <tools/kvtool/console/console.h>

#include <tools/kvtool/console/error_words.h>

#include <framework_utility/platform/foundation/files/file_error.h>

#include <fmt/core.h>

#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <new>

namespace kvtool {

using namespace FrameworkUtility;

namespace {

bool progressStands = false;  // the last line of the terminal

void write(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stderr); }

void clearProgress() {
  if (!progressStands) return;
  write("\r\033[K");
  progressStands = false;
}

void showProgress(std::size_t number, std::size_t count, std::string_view file) {
  static const bool isTerminal = isatty(STDERR_FILENO) == 1;
  if (!isTerminal) return;
  constexpr std::size_t longest = 50;  // a line that wraps could not be taken back
  clearProgress();
  const std::string_view end = file.size() > longest ? file.substr(file.size() - longest) : file;
  write(fmt::format("{} of {}  {}", number, count, end));
  progressStands = true;
}

}  // namespace

void print(std::string_view text) { printBytes(std::as_bytes(std::span(text))); }

void printLine(std::string_view line) {
  print(line);
  print("\n");
}

void printBytes(std::span<const std::byte> bytes) {
  clearProgress();
  std::fwrite(bytes.data(), 1, bytes.size(), stdout);
}

void printProblem(std::string_view problem) {
  clearProgress();
  write(fmt::format("kvtool: {}\n", problem));
}

void printProblem(std::string_view file, std::string_view problem) {
  printProblem(fmt::format("{}: {}", file, problem));
}

void printProblem(std::string_view file, const Error& error) {
  printProblem(file, fmt::format("{} ({} {})", plainWords(error), error.domain(), error.code()));
}

bool flushOutput() {
  errno = 0;
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return true;
  printProblem("standard output", Error(NSPOSIXErrorDomain, errno == 0 ? EIO : errno));
  return false;
}

bool forEachFile(const std::vector<std::string>& files, std::string_view done,
                 const std::function<bool(const std::string& file)>& work) {
  std::size_t worked = 0, tried = 0;
  for (const std::string& file : files) {
    ++tried;
    if (files.size() > 1) showProgress(tried, files.size(), file);
    try {
      worked += work(file) ? 1 : 0;
    } catch (const std::bad_alloc&) {
      printProblem(file, "there is not enough memory");
    }
  }
  clearProgress();
  const std::size_t failed = tried - worked;
  if (files.size() > 1) {
    write(fmt::format("kvtool: {} of {} {}{}\n", worked, tried, done,
                      failed == 0 ? "" : fmt::format(", {} failed", failed)));
  }
  return failed == 0;
}

}  // namespace kvtool
