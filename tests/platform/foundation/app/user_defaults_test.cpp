#include <framework_utility/platform/foundation/app/user_defaults.h>

#include <framework_utility/platform/foundation/app/application.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/foundation/property_lists/property_list.h>
#include <framework_utility/platform/foundation/values/random.h>
#include <tests/support/files.h>
#include <tests/support/scoped_environment.h>
#include <tests/support/temporary_folder.h>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

namespace FrameworkUtility {
namespace {

constexpr std::string_view suite = "group.app.tervix.Pelvar";

/// A configuration folder of its own.
class UserDefaultsTest : public ::testing::Test {
 protected:
  std::shared_ptr<UserDefaults> defaults() const { return UserDefaults::withSuiteName(suite); }
  std::string suiteFolder() const { return folder_.path(suite); }
  std::string file() const { return suiteFolder() + "/defaults.plist"; }

  /// The settings as another process would read them; absent when the file is not whole.
  std::optional<Dictionary> stored() const {
    const auto data = FileManager::defaultManager().contentsAtPath(file());
    const std::optional<Value> value = propertyListWithData(data.value_or(Data()));
    const Dictionary* dictionary = value ? value->as<Dictionary>() : nullptr;
    return dictionary ? std::optional(*dictionary) : std::nullopt;
  }

  testing::TemporaryFolder folder_;
  testing::ScopedEnvironment configuration_{"XDG_CONFIG_HOME", folder_.path().c_str()};
};

/// Runs `work` in a process of its own.
pid_t inChild(const std::function<void()>& work) {
  const pid_t child = fork();
  if (child == 0) {
    work();
    _exit(0);
  }
  return child;
}

bool succeeded(pid_t child) {
  int status = 0;
  return waitpid(child, &status, 0) == child && status == 0;
}

TEST_F(UserDefaultsTest, SettingsOutliveTheProcess) {
  const Dictionary values{{"flag", false},
                          {"text", "Grüße"},
                          {"number", -5},
                          {"data", Data(std::as_bytes(std::span("x")))},
                          {"list", Value(Array{1, "two"})}};
  EXPECT_FALSE(defaults()->objectForKey("flag"));
  EXPECT_TRUE(succeeded(inChild([&] {
    for (const auto& [key, value] : values) defaults()->setObject(value, *key.text());
    defaults()->setObject(1, "removed");
    defaults()->removeObjectForKey("removed");
  })));
  for (const auto& [key, value] : values) {
    EXPECT_EQ(defaults()->objectForKey(*key.text()), value) << *key.text();
  }
  EXPECT_FALSE(defaults()->objectForKey("removed"));
  EXPECT_EQ(stored(), values);
  EXPECT_EQ(std::filesystem::status(suiteFolder()).permissions(),
            std::filesystem::perms::owner_all);
}

TEST_F(UserDefaultsTest, SuitesAreSeparateAndNamedByFileNames) {
  defaults()->setObject(1, "key");
  EXPECT_FALSE(UserDefaults::withSuiteName("another")->objectForKey("key"));
  EXPECT_EQ(defaults(), UserDefaults::withSuiteName(suite));
  EXPECT_TRUE(UserDefaults::withSuiteName(std::string(255, 'x')));
  using namespace std::string_view_literals;
  for (const std::string_view name : {""sv, "."sv, ".."sv, "a/b"sv, "../x"sv, "a\0b"sv}) {
    EXPECT_FALSE(UserDefaults::withSuiteName(name)) << name;
  }
  EXPECT_FALSE(UserDefaults::withSuiteName(std::string(256, 'x')));
}

TEST_F(UserDefaultsTest, WithoutAnAbsoluteVariableTheyStandInTheHomeFolder) {
  const testing::ScopedEnvironment relative("XDG_CONFIG_HOME", "relative");
  defaults()->setObject(1, "key");
  EXPECT_TRUE(std::filesystem::exists(application().homeDirectory + "/.config/" +
                                      std::string(suite) + "/defaults.plist"));
}

TEST_F(UserDefaultsTest, StandardOnesAreTheAppsSuiteOrWhatStandsInTheirPlace) {
  const auto standard = [] { return UserDefaults::standardUserDefaults(); };
  EXPECT_EQ(standard(), UserDefaults::withSuiteName(application().bundleIdentifier));
  const auto memory = makeInMemoryUserDefaults();
  const ScopedUserDefaults outer(memory);
  {
    const ScopedUserDefaults inner(makeFailingUserDefaults());
    standard()->setObject(1, "key");
    EXPECT_FALSE(standard()->objectForKey("key"));
  }
  EXPECT_EQ(standard(), memory);
  standard()->setObject(URL::fileURLWithPath("/a"), "key");
  EXPECT_TRUE(memory->objectForKey("key"));
  memory->removeObjectForKey("key");
  EXPECT_FALSE(memory->objectForKey("key"));
}

TEST_F(UserDefaultsTest, TextsAndTruthValues) {
  const auto memory = makeInMemoryUserDefaults();
  struct Case {
    Value value;
    std::optional<std::string> text;
    bool truth;
  };
  const Case cases[] = {
      {"YES", "YES", true}, {"true", "true", true}, {" -007", " -007", true},
      {"no", "no", false},  {"0", "0", false},      {"", "", false},
      {"-", "-", false},    {6, "6", true},         {true, "1", true},
      {0.0, "0.0", false},  {0.5, "0.5", true},     {Dictionary(), std::nullopt, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    memory->setObject(c.value, "key");
    EXPECT_EQ(memory->stringForKey("key"), c.text);
    EXPECT_EQ(memory->boolForKey("key"), c.truth);
  }
  EXPECT_FALSE(memory->boolForKey("missing"));
  EXPECT_FALSE(memory->stringForKey("missing"));
}

TEST_F(UserDefaultsTest, WhatNoListHoldsIsKeptForThisProcess) {
  defaults()->setObject("old", "key");
  defaults()->setObject(URL::fileURLWithPath("/a"), "key");
  EXPECT_EQ(defaults()->objectForKey("key"), Value(URL::fileURLWithPath("/a")));
  EXPECT_EQ(stored(), (Dictionary{{"key", "old"}}));
  defaults()->setObject("new", "key");
  EXPECT_EQ(defaults()->objectForKey("key"), Value("new"));
  EXPECT_EQ(stored(), (Dictionary{{"key", "new"}}));
}

TEST_F(UserDefaultsTest, WhatTheDiskRefusesIsKeptForThisProcess) {
  std::filesystem::create_directories(file());  // which cannot be read and is not replaced
  defaults()->setObject(1, "set");
  defaults()->setObject(2, "removed");
  defaults()->removeObjectForKey("removed");
  EXPECT_EQ(defaults()->objectForKey("set"), Value(1));
  EXPECT_FALSE(defaults()->objectForKey("removed"));
  EXPECT_TRUE(std::filesystem::is_directory(file()));
}

TEST_F(UserDefaultsTest, ADamagedFileCountsAsEmptyAndIsKeptAside) {
  std::filesystem::create_directories(suiteFolder());
  for (const char* bytes : {"", "bplist00", "{\"json\": true}"}) {
    SCOPED_TRACE(bytes);
    std::ofstream(file(), std::ios::binary | std::ios::trunc) << bytes;
    EXPECT_FALSE(defaults()->objectForKey("key"));
    defaults()->removeObjectForKey("key");
    defaults()->setObject(2, "key");
    defaults()->setObject(1, "key");
    EXPECT_EQ(stored(), (Dictionary{{"key", 1}}));
  }
  std::vector<std::string> kept;
  for (const auto& entry : std::filesystem::directory_iterator(suiteFolder())) {
    if (entry.path().filename().string().starts_with("defaults-damaged-")) {
      kept.push_back(*testing::contentsOf(FileManager::defaultManager(), entry.path().string()));
    }
  }
  EXPECT_THAT(kept, ::testing::UnorderedElementsAre("bplist00", "{\"json\": true}"));
}

TEST_F(UserDefaultsTest, AnEqualSettingIsNotWrittenAgain) {
  defaults()->setObject("value", "key");
  const auto time = std::filesystem::last_write_time(file());
  std::filesystem::last_write_time(file(), time - std::chrono::hours(1));
  defaults()->setObject("value", "key");
  EXPECT_EQ(std::filesystem::last_write_time(file()), time - std::chrono::hours(1));
  defaults()->setObject("other", "key");
  EXPECT_GE(std::filesystem::last_write_time(file()), time);
}

TEST_F(UserDefaultsTest, OtherProcessesWritesAreSeenAtOnceAndTheFolderMayVanish) {
  for (int i = 0; i < 20; ++i) {
    ASSERT_TRUE(succeeded(inChild([&] { defaults()->setObject(i, "key"); })));
    ASSERT_EQ(defaults()->objectForKey("key"), Value(i));
  }
  std::filesystem::remove_all(suiteFolder());
  EXPECT_FALSE(defaults()->objectForKey("key"));
  defaults()->setObject(2, "key");
  EXPECT_EQ(stored(), (Dictionary{{"key", 2}}));
}

TEST_F(UserDefaultsTest, ProcessesAndThreadsLoseNothing) {
  constexpr int processes = 4, threads = 2, settings = 25;
  const auto save = [&](int writer) {
    for (int i = 0; i < settings; ++i) {
      defaults()->setObject(i, std::to_string(writer) + "." + std::to_string(i));
    }
  };
  std::vector<pid_t> children;
  for (int process = 0; process < processes; ++process) {
    children.push_back(inChild([&] {
      std::thread other(save, process);
      save(process + processes);
      other.join();
    }));
  }
  for (const pid_t child : children) EXPECT_TRUE(succeeded(child));
  EXPECT_EQ(stored().value().size(), static_cast<std::size_t>(processes * threads * settings));
}

TEST_F(UserDefaultsTest, AKillLeavesTheOldSettingsOrTheNew) {
  // As often as its number says, in enough bytes for several pages, so that a cut file shows.
  const auto pages = [](int number) {
    return Value(Array(static_cast<std::size_t>(1 + number % 7 * 2000), number));
  };
  unsigned longest = 8000;  // Microseconds; more where the disk is too slow to end a write in it.
  int last = 0;
  for (int round = 0; round < 40; ++round) {
    int ended[2];
    ASSERT_EQ(pipe2(ended, O_NONBLOCK), 0);
    const pid_t child = inChild([&] {
      for (int number = last + 1;; ++number) {
        defaults()->setObject(pages(number), "key");
        (void)!write(ended[1], &number, sizeof number);
      }
    });
    if (last == 0) longest += longest / 4;
    usleep(500 + randomUnsignedInteger() % longest);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    while (read(ended[0], &last, sizeof last) > 0) continue;
    close(ended[0]);
    close(ended[1]);
    if (!std::filesystem::exists(file())) continue;  // killed before the first write
    const std::optional<Dictionary> settings = stored();
    ASSERT_TRUE(settings) << "half a file";
    const Value& found = *settings->find("key");
    EXPECT_TRUE(found == pages(last) || found == pages(last + 1)) << last;
    last = static_cast<int>(found.as<Array>()->front().as<Number>()->integerValue());
  }
  EXPECT_GT(last, 0);

  // The next writer takes away what the killed ones left.
  ASSERT_TRUE(succeeded(inChild([&] { defaults()->setObject("clean", "key"); })));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(suiteFolder()), {}), 2);
}

}  // namespace
}  // namespace FrameworkUtility
