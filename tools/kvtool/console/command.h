#pragma once

#include <tools/kvtool/console/readers.h>

#include <functional>
#include <string>
#include <vector>

namespace kvtool {

/// What may stand behind a command.
struct Argument {
  std::string names;  ///< "-s,--size", or "FILE" for what stands alone.
  Reader reader;
  std::string help;
  bool isRequired = false;
  std::string standard = {};  ///< What the help shows as taken without it.
};

/// One command: how its line is read, and what it does.
struct Command {
  std::string name;
  std::string purpose;  ///< A line of the list of commands.
  std::vector<Argument> arguments;
  std::string help;  ///< Below the options: details and examples.
  /// What is wrong with arguments that are right each for itself; empty for nothing.
  std::function<std::string()> check = {};
  /// Runs to its end, reports what fails on standard error, and says whether all of it worked.
  std::function<bool()> run;
};

}  // namespace kvtool
