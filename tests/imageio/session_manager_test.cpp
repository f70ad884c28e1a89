#include <framework_utility/imageio/session_manager.h>

#include <framework_utility/platform/foundation/app/application.h>
#include <framework_utility/platform/foundation/app/user_defaults.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <tests/imageio/pictures.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace FrameworkUtility {
namespace {

using ::testing::MatchesRegex;
using ::testing::StartsWith;

class Session : public UISceneSession {
 public:
  explicit Session(std::string identifier) : identifier_(std::move(identifier)) {}
  std::string_view className() const override { return "Session"; }
  std::string persistentIdentifier() const override { return identifier_; }

 private:
  std::string identifier_;
};

class PlainDelegate : public UISceneDelegate {
 public:
  std::string_view className() const override { return "PlainDelegate"; }
};

class NamingDelegate : public UISceneDelegate, public KvSceneDelegateProtocol {
 public:
  explicit NamingDelegate(std::optional<std::string> prefix) : prefix_(std::move(prefix)) {}
  std::string_view className() const override { return "NamingDelegate"; }
  std::optional<std::string> identifierPrefix() const override { return prefix_; }

 private:
  std::optional<std::string> prefix_;
};

class Scene : public UIScene {
 public:
  Scene(const UISceneSession* session, const UISceneDelegate* delegate)
      : session_(session), delegate_(delegate) {}
  std::string_view className() const override { return "Scene"; }
  const UISceneSession* session() const override { return session_; }
  const UISceneDelegate* delegate() const override { return delegate_; }

 private:
  const UISceneSession* session_;
  const UISceneDelegate* delegate_;
};

class Controller : public UIViewController {
 public:
  explicit Controller(const UIView* view) : view_(view) {}
  std::string_view className() const override { return "Controller"; }
  const UIView* viewIfLoaded() const override { return view_; }

 private:
  const UIView* view_;
};

class NamingController : public Controller, public KvSessionIdentifierProtocol {
 public:
  NamingController(const UIView* view, std::optional<std::string> identifier)
      : Controller(view), identifier_(std::move(identifier)) {}
  std::optional<std::string> sessionIdentifier() const override { return identifier_; }

 private:
  std::optional<std::string> identifier_;
};

/// Fresh settings, as after an installation.
class KvSessionManagerTest : public ::testing::Test {
 protected:
  /// What the global identifier is from the second time on.
  std::string global() {
    KvSessionManager::sessionIdentifierGlobal();
    return KvSessionManager::sessionIdentifierGlobal();
  }

  ScopedUserDefaults defaults_{makeInMemoryUserDefaults()};
};

TEST_F(KvSessionManagerTest, TheGlobalIdentifierIsBareOnceAndAPathLater) {
  const std::string first = KvSessionManager::sessionIdentifierGlobal();
  EXPECT_THAT(first, MatchesRegex("SceneGlobal_[0-9A-F-]{36}"));
  EXPECT_EQ(KvSessionManager::sessionIdentifierGlobal(), temporaryDirectory() + first);
  EXPECT_EQ(KvSessionManager::sessionIdentifierGlobal(), temporaryDirectory() + first);
  EXPECT_EQ(UserDefaults::standardUserDefaults()->stringForKey("sessionTemporaryFolderPath"),
            first);
}

TEST_F(KvSessionManagerTest, AStoredNumberIsNoIdentifier) {
  UserDefaults::standardUserDefaults()->setObject(7, "sessionTemporaryFolderPath");
  EXPECT_THAT(KvSessionManager::sessionIdentifierGlobal(), StartsWith("SceneGlobal_"));
}

TEST_F(KvSessionManagerTest, TheGlobalFolderIsTheSessionsOwn) {
  const std::string globalPath = global();
  const std::optional<std::string> folder = KvSessionManager::getNewValidFolderPathGlobal();
  // The temporary directory stands in it twice.
  EXPECT_EQ(folder, temporaryDirectory() + globalPath);
  EXPECT_TRUE(std::filesystem::is_directory(*folder));
  EXPECT_EQ(KvSessionManager::getNewValidFolderPathGlobal(), folder);
}

TEST_F(KvSessionManagerTest, AScenePutsItsDelegatesPrefixInFront) {
  const std::string globalPath = global();
  const Session session("ABC"), nameless("");
  const PlainDelegate plain;
  const NamingDelegate naming("Main"), empty(""), silent(std::nullopt);
  struct Case {
    const char* what;
    const UISceneSession* session;
    const UISceneDelegate* delegate;
    std::string expected;
  };
  for (const Case& c : {Case{"named", &session, &naming, "MainABC"},
                        Case{"an empty prefix is one", &session, &empty, "ABC"},
                        Case{"no prefix", &session, &silent, "SceneUnknownABC"},
                        Case{"no role", &session, &plain, "SceneUnknownABC"},
                        Case{"no delegate", &session, nullptr, "SceneUnknownABC"},
                        Case{"no identifier", &nameless, &naming, globalPath},
                        Case{"no session", nullptr, &naming, globalPath}}) {
    SCOPED_TRACE(c.what);
    const Scene scene(c.session, c.delegate);
    EXPECT_EQ(KvSessionManager::sessionIdentifierForScene(&scene), c.expected);

    UIWindow window;
    EXPECT_EQ(KvSessionManager::sessionIdentifierForView(&window), globalPath);  // no scene yet
  }
  EXPECT_EQ(KvSessionManager::sessionIdentifierForScene(nullptr), globalPath);
  EXPECT_EQ(KvSessionManager::sessionIdentifierForView(nullptr), globalPath);
}

TEST_F(KvSessionManagerTest, AControllerNamesItsSessionOrItsWindowsSceneDoes) {
  const std::string globalPath = global();
  const Session session("ABC");
  const NamingDelegate delegate("Main");
  const Scene scene(&session, &delegate);
  const auto view = std::make_shared<UIView>();
  const auto window = std::make_shared<UIWindow>();
  window->setWindowScene(&scene);
  window->addSubview(view);
  const UIView alone;

  EXPECT_EQ(KvSessionManager::sessionIdentifierForView(view.get()), "MainABC");
  EXPECT_EQ(KvSessionManager::sessionIdentifierForView(&alone), globalPath);
  struct Case {
    const char* what;
    const UIView* view;
    std::optional<std::string> identifier;
    std::string expected;
  };
  for (const Case& c : {Case{"its own", view.get(), "Mine", "Mine"},
                        Case{"its scene's", view.get(), std::nullopt, "MainABC"},
                        Case{"no scene", &alone, std::nullopt, globalPath},
                        Case{"not loaded", nullptr, std::nullopt, globalPath}}) {
    SCOPED_TRACE(c.what);
    const NamingController controller(c.view, c.identifier);
    EXPECT_EQ(KvSessionManager::sessionIdentifierForViewController(&controller), c.expected);
  }
  const Controller withoutRole(view.get());
  EXPECT_EQ(KvSessionManager::sessionIdentifierForViewController(&withoutRole), globalPath);
  EXPECT_EQ(KvSessionManager::sessionIdentifierForViewController(nullptr), globalPath);
}

// In a process of its own, for the facts about the app are set once.
TEST_F(KvSessionManagerTest, AnExtensionAlwaysUsesTheGlobalIdentifier) {
  EXPECT_EXIT(
      {
        Application facts = systemApplication();
        facts.executablePath = "/Apps/Pelvar.app/PlugIns/Edit.APPEX/Edit";
        setApplication(facts);
        const Session session("ABC");
        const Scene scene(&session, nullptr);
        const std::string identifier = KvSessionManager::sessionIdentifierForScene(&scene);
        std::exit(identifier.starts_with("SceneGlobal_") ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST_F(KvSessionManagerTest, AFolderStaysInTheTemporaryDirectory) {
  for (const std::string_view identifier : {"A", "a/b", "a/../c", "..d", "e.."}) {
    SCOPED_TRACE(identifier);
    const auto path = KvSessionManager::getPathForSessionIdentifier(identifier);
    EXPECT_EQ(path, temporaryDirectory() + std::string(identifier));
    EXPECT_TRUE(std::filesystem::is_directory(*path));
  }
  for (const std::string_view identifier :
       {"", "..", "../x", "a/../../x", "./../x", "a/b/../../.."}) {
    EXPECT_FALSE(KvSessionManager::getPathForSessionIdentifier(identifier)) << identifier;
  }
  EXPECT_FALSE(std::filesystem::exists(temporaryDirectory() + "../x"));
}

TEST_F(KvSessionManagerTest, EveryNewFolderIsNewAndEmpty) {
  std::vector<std::string> flushed;
  const auto watched = makeFailingFileManager(
      FileManager::defaultManager(), [&](std::string_view operation, std::string_view path) {
        if (operation == "flushDirectoryAtPath") flushed.emplace_back(path);
        return std::optional<Error>();
      });
  const ScopedFileManager scope(*watched);
  const auto first = KvSessionManager::getNewValidFolderPathForSessionIdentifier("New");
  const auto second = KvSessionManager::getNewValidFolderPathForSessionIdentifier("New");
  ASSERT_TRUE(first && second);
  // Each new one into the folder above it.
  std::string above = temporaryDirectory();
  above.pop_back();
  EXPECT_THAT(flushed, ::testing::ElementsAre(above, above + "/New", above + "/New"));
  EXPECT_NE(first, second);
  EXPECT_THAT(*first, MatchesRegex(temporaryDirectory() + "New/[0-9A-F-]{36}"));
  EXPECT_TRUE(std::filesystem::is_empty(*first));
  EXPECT_FALSE(KvSessionManager::getNewValidFolderPathForSessionIdentifier(""));
}

TEST_F(KvSessionManagerTest, AFolderThatCannotBeMadeIsAnsweredAllTheSame) {
  const auto failing = makeFailingFileManager(
      FileManager::defaultManager(), [](std::string_view operation, std::string_view) {
        return operation == "createDirectoryAtPath" ? std::optional(Error("test", 1))
                                                    : std::nullopt;
      });
  const ScopedFileManager scope(*failing);
  EXPECT_EQ(KvSessionManager::getPathForSessionIdentifier("Unmade"),
            temporaryDirectory() + "Unmade");
  EXPECT_FALSE(std::filesystem::exists(temporaryDirectory() + "Unmade"));
}

TEST_F(KvSessionManagerTest, CleaningUpTakesWhatEndsInTheSuffixAndFollowsNoLink) {
  const testing::TemporaryFolder outside;
  testing::writeFile(outside.path("precious"), Data());
  const std::string folder = temporaryDirectory();
  const std::filesystem::path root(folder);
  for (const char* name : {"MainABC/deep/er", "SceneUnknownABC", "ABCMain", "MainAbc"}) {
    std::filesystem::create_directories(root / name);
  }
  testing::writeFile(folder + "MainABC/deep/er/file", Data());
  std::filesystem::create_directory_symlink(outside.path(), root / "LinkABC");
  std::filesystem::create_directory_symlink(outside.path(), root / "MainABC/link");

  KvSessionManager::destroySessionForSessionIdentifierSuffix("");
  EXPECT_TRUE(std::filesystem::exists(root / "MainABC"));

  const Session session("ABC");
  const Scene scene(&session, nullptr);
  KvSessionManager::destroySessionForScene(nullptr);
  KvSessionManager::destroySessionForSceneSession(nullptr);
  KvSessionManager::destroySessionForScene(&scene);
  for (const char* gone : {"MainABC", "SceneUnknownABC", "LinkABC"}) {
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(root / gone))) << gone;
  }
  for (const char* kept : {"ABCMain", "MainAbc"}) {
    EXPECT_TRUE(std::filesystem::exists(root / kept)) << kept;
  }
  EXPECT_TRUE(std::filesystem::exists(outside.path("precious")));
}

TEST_F(KvSessionManagerTest, OneFailingRemovalDoesNotEndTheCleanUp) {
  const std::filesystem::path root(temporaryDirectory());
  for (const char* name : {"1-X", "2-X", "3-X"}) std::filesystem::create_directory(root / name);
  const auto failing = makeFailingFileManager(
      FileManager::defaultManager(), [](std::string_view operation, std::string_view path) {
        return operation == "removeItemAtPath" && path.ends_with("2-X")
                   ? std::optional(Error("test", 1))
                   : std::nullopt;
      });
  const ScopedFileManager scope(*failing);
  KvSessionManager::destroySessionForSessionIdentifierSuffix("-X");
  EXPECT_FALSE(std::filesystem::exists(root / "1-X"));
  EXPECT_TRUE(std::filesystem::exists(root / "2-X"));
  EXPECT_FALSE(std::filesystem::exists(root / "3-X"));
}

}  // namespace
}  // namespace FrameworkUtility
