#pragma once

#include <string>

namespace FrameworkUtility::testing {

/// What a program left behind.
struct ProgramResult {
  int exitCode = -1;     ///< -1 when it was killed.
  std::string output;    ///< On standard output.
  std::string problems;  ///< On standard error.
};

/// Runs a command of the shell to its end in `folder`, in the zone UTC. Leaves the file "problems"
/// there.
ProgramResult runProgram(const std::string& command, const std::string& folder);

}  // namespace FrameworkUtility::testing
