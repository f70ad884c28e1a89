#pragma once

#include <tools/kvtool/console/command.h>

#include <span>

namespace kvtool {

/// What the tool says of itself.
struct ToolText {
  std::string name;
  std::string version;
  std::string purpose;
  std::string help;  ///< Below the list of commands.
};

/// Reads the command line, runs its command and gives the exit code: 0 when all of it worked, 1
/// when something failed, 2 for a line that cannot be understood, with one line on standard error
/// that says why.
int runCommandLine(const ToolText& tool, std::span<const Command> commands, int argc, char** argv);

}  // namespace kvtool
