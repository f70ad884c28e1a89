// What only a real file system can show: links, permissions, special files, full disks, processes
// that are killed, very deep folders, and the temporary directory.

#include <framework_utility/platform/foundation/app/temporary_directory.h>
#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/foundation/values/data.h>
#include <tests/support/files.h>
#include <tests/support/scoped_environment.h>
#include <tests/support/small_disk.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <functional>

namespace FrameworkUtility {
namespace {

using testing::bytesOf;
using testing::contentsOf;
using ::testing::IsEmpty;
using ::testing::Optional;
using ::testing::SizeIs;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

class RealFileManagerTest : public ::testing::Test {
 protected:
  std::string at(std::string_view name) const { return folder.path(name); }
  bool write(std::string_view name, std::string_view text) {
    return files.writeAtomically(bytesOf(text), at(name), nullptr);
  }
  std::vector<std::string> names() {
    return files.contentsOfDirectoryAtPath(folder.path(), nullptr).value();
  }
  bool makeFolder(std::string_view name) {
    return files.createDirectoryAtPath(at(name), IntermediateDirectories::create, nullptr);
  }
  mode_t mode(std::string_view name) const {
    struct stat status {};
    return lstat(at(name).c_str(), &status) == 0 ? status.st_mode & 0777 : 0;
  }
  // Runs in a child whose working directory is `folder`. Whether it answered true.
  bool runInChild(const std::function<bool()>& body) {
    const pid_t child = fork();
    if (child == 0) _exit(chdir(folder.path().c_str()) == 0 && body() ? 0 : 1);
    int status = -1;
    waitpid(child, &status, 0);
    return status == 0;
  }
  // As nobody if this is root, whom no permission binds.
  bool runUnprivileged(const std::function<bool()>& body) {
    return runInChild(
        [&] { return (geteuid() != 0 || (setgid(65534) == 0 && setuid(65534) == 0)) && body(); });
  }

  testing::TemporaryFolder folder;
  FileManager& files = FileManager::defaultManager();
};

TEST_F(RealFileManagerTest, LinksAreRemovedCopiedAndReplacedThemselves) {
  ASSERT_TRUE(makeFolder("target") && write("target/kept", "kept") && makeFolder("tree"));
  ASSERT_EQ(symlink(at("target").c_str(), at("link").c_str()), 0);
  ASSERT_EQ(symlink("nowhere", at("dangling").c_str()), 0);
  ASSERT_EQ(symlink("../target", at("tree/inside").c_str()), 0);

  EXPECT_TRUE(files.directoryExistsAtPath(at("link")));
  EXPECT_FALSE(files.fileExistsAtPath(at("dangling")));
  Error error;
  EXPECT_FALSE(files.copyItemAtPath(at("target/kept"), at("dangling"), &error));
  EXPECT_EQ(error.code(), NSFileWriteFileExistsError);

  ASSERT_TRUE(files.copyItemAtPath(at("tree"), at("copy"), nullptr));
  EXPECT_EQ(std::filesystem::read_symlink(at("copy/inside")), "../target");
  ASSERT_TRUE(files.copyItemAtPath(at("dangling"), at("dangling 2"), nullptr));
  EXPECT_EQ(std::filesystem::read_symlink(at("dangling 2")), "nowhere");

  // A slash at the end would make the system follow the link.
  EXPECT_TRUE(files.removeItemAtPath(at("link/"), nullptr));
  EXPECT_TRUE(files.removeItemAtPath(at("tree"), nullptr));
  EXPECT_TRUE(files.removeItemAtPath(at("dangling 2"), nullptr));
  ASSERT_TRUE(write("dangling", "now a file"));
  EXPECT_THAT(names(), UnorderedElementsAre("target", "copy", "dangling"));
  EXPECT_EQ(contentsOf(files, at("target/kept")), "kept");
}

TEST_F(RealFileManagerTest, PipesSocketsAndDevicesNeverBlock) {
  ASSERT_EQ(mkfifo(at("pipe").c_str(), 0600), 0);
  const int server = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
  ASSERT_LT(at("socket").size(), sizeof address.sun_path);
  at("socket").copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(bind(server, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  for (const std::string& path : {at("pipe"), at("socket"), std::string("/dev/zero")}) {
    SCOPED_TRACE(path);
    Error error;
    EXPECT_EQ(files.openFileAtPath(path, &error), nullptr);
    EXPECT_EQ(error.code(), NSFileReadUnknownError);
    EXPECT_FALSE(files.copyItemAtPath(path, at("copy"), &error));
    EXPECT_EQ(error.code(), NSFileReadUnknownError);
    EXPECT_EQ(files.attributesOfItemAtPath(path, nullptr)->kind, FileKind::other);
  }
  // One that does not know its size is read whole.
  EXPECT_GT(files.contentsAtPath("/proc/self/status").value_or(Data()).size(), 100u);
  // A folder that holds one is copied wholly or not at all.
  EXPECT_FALSE(files.copyItemAtPath(folder.path(), folder.path() + "-copy", nullptr));
  EXPECT_FALSE(files.fileExistsAtPath(folder.path() + "-copy"));
  EXPECT_TRUE(write("pipe", "a file in its place"));
  EXPECT_TRUE(files.removeItemAtPath(at("socket"), nullptr));
  EXPECT_THAT(names(), UnorderedElementsAre("pipe"));
  close(server);
}

TEST_F(RealFileManagerTest, AReplacedFileHandsItsPermissionsOnAndACopyKeepsThem) {
  ASSERT_TRUE(write("private", "1"));
  ASSERT_EQ(chmod(at("private").c_str(), 0640), 0);
  ASSERT_TRUE(write("private", "2"));
  EXPECT_EQ(mode("private"), 0640u);
  const mode_t mask = umask(077);
  ASSERT_TRUE(write("new", "3"));
  umask(mask);
  EXPECT_EQ(mode("new"), 0600u);
  ASSERT_TRUE(makeFolder("tree") && write("tree/f", "4"));
  ASSERT_EQ(chmod(at("tree/f").c_str(), 0440), 0);
  ASSERT_EQ(chmod(at("tree").c_str(), 0550), 0);
  ASSERT_TRUE(files.copyItemAtPath(at("tree"), at("copy"), nullptr));
  EXPECT_EQ(mode("copy"), 0550u);
  EXPECT_EQ(mode("copy/f"), 0440u);
}

TEST_F(RealFileManagerTest, RefusalsForWantOfPermissionAreReportedAndLeaveNothing) {
  ASSERT_TRUE(makeFolder("closed") && makeFolder("open"));
  ASSERT_TRUE(write("closed/f", "1") && write("secret", "2"));
  const std::pair<const char*, mode_t> modes[] = {
      {".", 0755}, {"closed", 0555}, {"open", 0777}, {"secret", 0000}};
  for (const auto& [name, mode] : modes) ASSERT_EQ(chmod(at(name).c_str(), mode), 0);
  EXPECT_TRUE(runUnprivileged([&] {
    Error write, remove, open, copy;
    return !files.writeAtomically(bytesOf("x"), "closed/f", &write) &&
           write.code() == NSFileWriteNoPermissionError &&
           !files.removeItemAtPath("closed", &remove) &&
           remove.code() == NSFileWriteNoPermissionError &&
           !files.openFileAtPath("secret", &open) && open.code() == NSFileReadNoPermissionError &&
           !files.copyItemAtPath("secret", "open/copy", &copy) &&
           copy.code() == NSFileReadNoPermissionError;
  }));
  // Of a tree that cannot be copied wholly nothing stays, though parts of it are read-only, and one
  // that cannot be removed wholly is removed as far as it goes.
  EXPECT_TRUE(runUnprivileged([&] {
    const std::string tree = "open/tree";
    for (const char* part : {"/1", "/2", "/3"}) {
      if (!files.createDirectoryAtPath(tree + part, IntermediateDirectories::create, nullptr) ||
          !files.writeAtomically(bytesOf("x"), tree + part + "/f", nullptr) ||
          chmod((tree + part).c_str(), 0500) != 0) {
        return false;
      }
    }
    chmod((tree + "/2/f").c_str(), 0000);
    const bool copied = files.copyItemAtPath(tree, "open/copy", nullptr);
    const auto left = files.contentsOfDirectoryAtPath("open", nullptr);
    if (copied || left != std::vector<std::string>{"tree"}) return false;

    chmod((tree + "/2").c_str(), 0700);
    Error error;
    const bool removed = files.removeItemAtPath(tree, &error);
    const auto kept = files.contentsOfDirectoryAtPath(tree, nullptr);
    for (const char* part : {"/1", "/3"}) chmod((tree + part).c_str(), 0700);
    return !removed && error.code() == NSFileWriteNoPermissionError && kept && kept->size() == 2 &&
           files.removeItemAtPath(tree, nullptr);
  }));
  EXPECT_EQ(contentsOf(files, at("closed/f")), "1");
  EXPECT_THAT(files.contentsOfDirectoryAtPath(at("closed"), nullptr),
              Optional(UnorderedElementsAre("f")));
  EXPECT_THAT(files.contentsOfDirectoryAtPath(at("open"), nullptr), Optional(IsEmpty()));
}

TEST_F(RealFileManagerTest, AFullDiskKeepsTheOldFileAndOtherVolumesAreReachedByCopying) {
  const std::string disk = at("disk");
  ASSERT_TRUE(makeFolder("disk"));
  const std::optional<bool> held = testing::runOnSmallDisk(disk, [&] {
    EXPECT_TRUE(write("disk/f", "old"));
    Error error;
    const std::string large(1 << 20, 'x');
    EXPECT_FALSE(files.writeAtomically(bytesOf(large), at("disk/f"), &error));
    EXPECT_EQ(error.code(), NSFileWriteOutOfSpaceError);
    EXPECT_TRUE(write("large", large));
    EXPECT_FALSE(files.copyItemAtPath(at("large"), at("disk/g"), &error));
    EXPECT_EQ(error.code(), NSFileWriteOutOfSpaceError);
    EXPECT_FALSE(files.moveItemAtPath(at("large"), at("disk/g"), &error));
    EXPECT_EQ(error.code(), NSFileWriteOutOfSpaceError);
    EXPECT_EQ(contentsOf(files, at("large")), large);
    EXPECT_THAT(files.contentsOfDirectoryAtPath(disk, nullptr),
                Optional(UnorderedElementsAre("f")));
    EXPECT_EQ(contentsOf(files, at("disk/f")), "old");

    EXPECT_TRUE(makeFolder("tree/a") && write("tree/a/f", "text"));
    EXPECT_TRUE(files.moveItemAtPath(at("tree"), at("disk/tree"), nullptr));
    EXPECT_EQ(contentsOf(files, at("disk/tree/a/f")), "text");
    EXPECT_FALSE(files.fileExistsAtPath(at("tree")));
    EXPECT_FALSE(files.moveItemAtPath(at("large"), at("disk/f"), &error));
    EXPECT_EQ(error.code(), NSFileWriteFileExistsError);

    EXPECT_EQ(mount(nullptr, disk.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    EXPECT_FALSE(files.writeAtomically(bytesOf("x"), at("disk/f"), &error));
    EXPECT_EQ(error.code(), NSFileWriteVolumeReadOnlyError);
  });
  if (!held) GTEST_SKIP() << "this system lets nobody mount a small disk";
  EXPECT_TRUE(*held);
}

TEST_F(RealFileManagerTest, AFolderGoesIntoItselfByNoPathAndNothingIsWritten) {
  ASSERT_TRUE(makeFolder("from/inner"));
  ASSERT_EQ(symlink(at("from/inner").c_str(), at("link").c_str()), 0);
  const auto before = std::filesystem::last_write_time(at("from/inner")) - std::chrono::hours(1);
  for (const auto& [source, target] : {std::pair{"from", "from/inner/self"},
                                       {"from/inner", "from/inner/self"},
                                       {"from", "link/self"},
                                       {"link/..", "from/inner/self"},
                                       {"link/../inner", "from/./inner/../inner/self"}}) {
    SCOPED_TRACE(std::string(source) + " into " + target);
    std::filesystem::last_write_time(at("from/inner"), before);
    Error error;
    EXPECT_FALSE(files.copyItemAtPath(at(source), at(target), &error));
    EXPECT_EQ(error.underlyingError().value_or(Error()).code(), EINVAL);
    EXPECT_FALSE(files.moveItemAtPath(at(source), at(target), nullptr));
    EXPECT_EQ(std::filesystem::last_write_time(at("from/inner")), before);
  }
  EXPECT_TRUE(files.copyItemAtPath(at("from/inner"), at("from/beside"), nullptr));
  EXPECT_TRUE(files.copyItemAtPath(at("link"), at("link/link"), nullptr));  // itself, a file
}

// In a child: from now on the system refuses `call` with `number` where the bits of `mask` in its
// argument are those of `value`.
void refuse(int call, unsigned argument, unsigned mask, unsigned value, int number) {
  const auto load = [](std::size_t offset) {
    return sock_filter BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<unsigned>(offset));
  };
  sock_filter program[] = {
      load(offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call), 0, 4),
      load(offsetof(seccomp_data, args) + 8 * argument),
      BPF_STMT(BPF_ALU | BPF_AND | BPF_K, mask),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, value, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned>(number)),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  const sock_fprog filter{std::size(program), program};
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
      prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0) {
    _exit(3);
  }
}

TEST_F(RealFileManagerTest, AFolderThatCannotBeFlushedIsAFailure) {
  ASSERT_TRUE(write("old", "old") && write("source", "text"));
  const auto failsWithEio = [](const Error& error) {
    return error.underlyingError().value_or(Error()).code() == EIO;
  };
  EXPECT_TRUE(runInChild([&] {
    // The number that the folder gets, which is opened first; the file gets the next.
    const int folderNumber = dup(0);
    close(folderNumber);
    refuse(SYS_fsync, 0, ~0U, static_cast<unsigned>(folderNumber), EIO);
    Error write, replace, copy;
    return !files.writeAtomically(bytesOf("new"), "new", &write) && failsWithEio(write) &&
           !files.fileExistsAtPath("new") &&
           !files.writeAtomically(bytesOf("new"), "old", &replace) && failsWithEio(replace) &&
           contentsOf(files, "old") == "new" && !files.copyItemAtPath("source", "copy", &copy) &&
           failsWithEio(copy) && !files.fileExistsAtPath("copy");
  }));
  EXPECT_TRUE(runInChild([&] {
    refuse(SYS_fsync, 0, 0, 0, EIO);
    Error error;
    return !files.flushDirectoryAtPath(".", &error) && failsWithEio(error);
  }));
  // Of a copy nothing is flushed that is not its own.
  for (int i = 0; i < 70; ++i) ASSERT_TRUE(makeFolder("tree/" + std::to_string(i) + "/inner"));
  EXPECT_TRUE(runInChild([&] {
    refuse(SYS_syncfs, 0, 0, 0, EIO);
    return files.copyItemAtPath("tree", "tree 2", nullptr);
  }));
  EXPECT_THAT(names(), UnorderedElementsAre("old", "source", "tree", "tree 2"));
  EXPECT_THAT(files.contentsOfDirectoryAtPath(at("tree 2"), nullptr), Optional(SizeIs(70)));
}

TEST_F(RealFileManagerTest, FileSystemsWithoutNamelessFilesAreWrittenTo) {
  EXPECT_TRUE(runInChild([&] {
    refuse(SYS_openat, 2, O_TMPFILE, O_TMPFILE, EOPNOTSUPP);
    return files.writeAtomically(bytesOf("old"), "f", nullptr) &&
           files.writeAtomically(bytesOf("new"), "f", nullptr) &&
           files.copyItemAtPath("f", "g", nullptr) && !files.copyItemAtPath("f", "g", nullptr) &&
           !files.writeAtomically(bytesOf("x"), ".", nullptr);
  }));
  EXPECT_EQ(contentsOf(files, at("f")), "new");
  EXPECT_EQ(contentsOf(files, at("g")), "new");
  EXPECT_THAT(names(), UnorderedElementsAre("f", "g"));
}

TEST_F(RealFileManagerTest, AnInterruptedProcessLeavesWholeFilesOldOrNew) {
  const std::string old(200'000, 'o'), fresh(300'000, 'n');
  for (int round = 0; round < 80; ++round) {
    SCOPED_TRACE(round);
    ASSERT_TRUE(write("f", old));
    const pid_t child = fork();
    int made = 0;
    while (child == 0) {
      const std::string name = std::to_string(made++);
      if (!write("f", fresh) || !write(name, fresh) ||
          !files.copyItemAtPath(at(name), at(name + " copy"), nullptr)) {
        _exit(1);
      }
    }
    usleep(static_cast<unsigned>(round) * 131);
    kill(child, round % 2 == 0 ? SIGKILL : SIGTERM);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    for (const std::string& name : names()) {
      // Killed in the few microseconds of the replacement itself it leaves the new file twice.
      const auto text = contentsOf(files, at(name));
      EXPECT_TRUE(text == fresh || (name == "f" && text == old)) << name;
      EXPECT_TRUE(name.front() != '.' || round % 2 == 0) << name;
      ASSERT_TRUE(files.removeItemAtPath(at(name), nullptr));
    }
  }
}

TEST_F(RealFileManagerTest, VeryDeepFoldersAreCopiedAndRemoved) {
  // Far beyond the longest path, the number of descriptors and a recursion's stack. In memory where
  // that can be had, for a disk takes its time over so many folders.
  constexpr int depth = 10'000;
  const std::string memory = "/dev/shm", disk = folder.path();
  const bool hasMemory = access(memory.c_str(), W_OK) == 0;
  const testing::ScopedEnvironment variable("TMPDIR", (hasMemory ? memory : disk).c_str());
  const testing::TemporaryFolder place;

  ASSERT_EQ(mkdir(place.path("deep").c_str(), 0777), 0);
  int level = open(place.path("deep").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  for (int i = 0; i < depth; ++i) {
    ASSERT_EQ(mkdirat(level, "d", 0777), 0);
    const int next = openat(level, "d", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    close(level);
    level = next;
  }
  close(openat(level, "f", O_WRONLY | O_CREAT | O_CLOEXEC, 0666));
  close(level);
  EXPECT_TRUE(files.copyItemAtPath(place.path("deep"), place.path("copy"), nullptr));
  EXPECT_TRUE(files.removeItemAtPath(place.path("deep"), nullptr));
  EXPECT_TRUE(files.removeItemAtPath(place.path("copy"), nullptr));
  EXPECT_THAT(files.contentsOfDirectoryAtPath(place.path(), nullptr), Optional(IsEmpty()));
}

class TemporaryDirectoryTest : public RealFileManagerTest {
  testing::ScopedEnvironment place_{"TMPDIR", folder.path().c_str()};
};

TEST_F(TemporaryDirectoryTest, IsAPrivateFolderThatComesBackWhenItIsGone) {
  const std::string path = temporaryDirectory();
  EXPECT_THAT(path, StartsWith(folder.path() + "/"));
  EXPECT_EQ(path.back(), '/');
  EXPECT_EQ(temporaryDirectory(), path);
  ASSERT_EQ(names().size(), 1u);
  EXPECT_EQ(mode(names().front()), 0700u);
  ASSERT_TRUE(files.removeItemAtPath(path, nullptr));
  EXPECT_EQ(temporaryDirectory(), path);
  EXPECT_TRUE(files.directoryExistsAtPath(path));
}

TEST_F(TemporaryDirectoryTest, ANameThatSomebodyElseHoldsIsLeftAlone) {
  ASSERT_EQ(mkdir(at("trap").c_str(), 0700), 0);
  const std::function<bool(const char*)> plants[] = {
      [this](const char* path) { return symlink(at("trap").c_str(), path) == 0; },
      [](const char* path) { return mkdir(path, 0700) == 0 && chmod(path, 0777) == 0; },
      [](const char* path) { return close(creat(path, 0600)) == 0; },
      [](const char* path) { return mkdir(path, 0700) == 0 && chown(path, 65534, 65534) == 0; }};
  for (const auto& plant : plants) {
    std::string path = temporaryDirectory();
    ASSERT_TRUE(files.removeItemAtPath(path, nullptr));
    path.pop_back();
    if (!plant(path.c_str())) continue;  // only root can give a folder to somebody else
    const std::string other = temporaryDirectory();
    EXPECT_NE(other, path + "/");
    EXPECT_TRUE(files.directoryExistsAtPath(other));
    EXPECT_EQ(temporaryDirectory(), other);
  }
  EXPECT_THAT(files.contentsOfDirectoryAtPath(at("trap"), nullptr), Optional(IsEmpty()));
}

}  // namespace
}  // namespace FrameworkUtility
