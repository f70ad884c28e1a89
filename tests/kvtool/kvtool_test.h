#pragma once

#include <framework_utility/platform/foundation/files/files.h>
#include <tests/imageio/pictures.h>
#include <tests/support/files.h>
#include <tests/support/run_program.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace FrameworkUtility::testing {

/// The tool, run as a process in a folder of its own.
class KvtoolTest : public ::testing::Test {
 protected:
  std::string path(const std::string& name) const { return folder_.path(name); }

  void write(const std::string& name, const CGImage& image, const std::string& type,
             const Dictionary& properties = {}) const {
    writeFile(path(name), encoded(image, "public." + type, properties));
  }

  std::string contents(const std::string& name) const {
    return contentsOf(FileManager::defaultManager(), path(name)).value_or("");
  }

  /// A line of the shell.
  ProgramResult runLine(const std::string& line) const { return runProgram(line, folder_.path()); }

  /// `arguments` as a shell reads them.
  ProgramResult run(const std::string& arguments) const { return runLine(tool + arguments); }

  /// What succeeds prints, and nothing else.
  std::string output(const std::string& arguments) const {
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.exitCode, 0) << arguments;
    EXPECT_EQ(result.problems, "") << arguments;
    return result.output;
  }

  const std::string tool = "'" KVTOOL "' ";

 private:
  const TemporaryFolder folder_;
};

}  // namespace FrameworkUtility::testing
