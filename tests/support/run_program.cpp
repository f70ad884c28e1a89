#include <tests/support/run_program.h>

#include <sys/wait.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace FrameworkUtility::testing {

ProgramResult runProgram(const std::string& command, const std::string& folder) {
  const std::string line = "cd '" + folder + "' && { export TZ=UTC; " + command + "; } 2>problems";
  std::FILE* pipe = popen(line.c_str(), "r");
  if (!pipe) std::abort();
  ProgramResult result;
  std::array<char, 4096> buffer{};
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe)) {
    result.output.append(buffer.data(), count);
  }
  const int status = pclose(pipe);
  if (WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
  std::ifstream problems(folder + "/problems", std::ios::binary);
  result.problems.assign(std::istreambuf_iterator<char>(problems), {});
  return result;
}

}  // namespace FrameworkUtility::testing
