#include <tests/support/temporary_folder.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace FrameworkUtility::testing {

TemporaryFolder::TemporaryFolder()
    : path_((std::filesystem::temp_directory_path() / "framework-utility-test-XXXXXX").string()) {
  if (!mkdtemp(path_.data())) {
    std::perror("mkdtemp");
    std::abort();
  }
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace FrameworkUtility::testing
