#include <tests/support/small_disk.h>

#include <gtest/gtest.h>

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>

namespace FrameworkUtility::testing {

namespace {

constexpr int refused = 77;

/// The right to mount: root's, or that of a name space where this user is himself.
bool mayMount() {
  const std::string user = std::to_string(getuid()), group = std::to_string(getgid());
  if (unshare(CLONE_NEWNS) == 0) return true;
  if (unshare(CLONE_NEWNS | CLONE_NEWUSER) != 0) return false;
  std::ofstream("/proc/self/setgroups") << "deny";
  std::ofstream("/proc/self/uid_map") << user << ' ' << user << " 1";
  std::ofstream("/proc/self/gid_map") << group << ' ' << group << " 1";
  return true;
}

}  // namespace

std::optional<bool> runOnSmallDisk(const std::string& folder, const std::function<void()>& body) {
  const pid_t child = fork();
  if (child == 0) {
    if (!mayMount() || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=256k,mode=0700") != 0) {
      _exit(refused);
    }
    body();
    std::fflush(nullptr);
    _exit(::testing::Test::HasFailure() ? 1 : 0);
  }
  int status = -1;
  waitpid(child, &status, 0);
  if (WIFEXITED(status) && WEXITSTATUS(status) == refused) return std::nullopt;
  return status == 0;
}

}  // namespace FrameworkUtility::testing
