#include <tools/kvtool/console.h>

#include <fmt/core.h>

#include <cstdio>

namespace kvtool {

void printLine(std::string_view line) {
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
}

void printProblem(std::string_view file, std::string_view problem) {
  const std::string line = fmt::format("kvtool: {}: {}\n", file, problem);
  std::fwrite(line.data(), 1, line.size(), stderr);
}

void printProblem(std::string_view file, const FrameworkUtility::Error& error) {
  printProblem(
      file, fmt::format("{} ({} {})", error.localizedDescription(), error.domain(), error.code()));
}

bool flushOutput() { return std::fflush(stdout) == 0 && std::ferror(stdout) == 0; }

}  // namespace kvtool
