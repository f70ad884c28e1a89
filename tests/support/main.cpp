// Runs a test program with folders of its own, so that no test sees or leaves anything of the
// user's: the app's temporary directory and the user defaults stand below them.

#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const FrameworkUtility::testing::TemporaryFolder folder;
  for (const auto& [variable, name] :
       {std::pair{"HOME", "home"}, {"XDG_CONFIG_HOME", "config"}, {"TMPDIR", "tmp"}}) {
    std::filesystem::create_directory(folder.path(name));
    setenv(variable, folder.path(name).c_str(), 1);
  }
  return RUN_ALL_TESTS();
}
