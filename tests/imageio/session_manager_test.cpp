#include <framework_utility/imageio/session_manager.h>

#include <framework_utility/platform/foundation/app/application.h>
#include <framework_utility/platform/foundation/app/temporary_directory.h>
#include <framework_utility/platform/foundation/app/user_defaults.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <tests/imageio/pictures.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>

namespace FrameworkUtility {
namespace {

using ::testing::MatchesRegex;
using ::testing::StartsWith;
using Text = std::optional<std::string>;

struct Session : UISceneSession {
  explicit Session(std::string name) : identifier(std::move(name)) {}
  std::string_view className() const override { return "Session"; }
  std::string persistentIdentifier() const override { return identifier; }
  std::string identifier;
};

struct PlainDelegate : UISceneDelegate {
  std::string_view className() const override { return "PlainDelegate"; }
};

struct NamingDelegate : PlainDelegate, KvSceneDelegateProtocol {
  explicit NamingDelegate(Text text) : prefix(std::move(text)) {}
  Text identifierPrefix() const override { return prefix; }
  Text prefix;
};

struct Scene : UIScene {
  Scene(const UISceneSession* itsSession, const UISceneDelegate* itsDelegate)
      : session_(itsSession), delegate_(itsDelegate) {}
  std::string_view className() const override { return "Scene"; }
  const UISceneSession* session() const override { return session_; }
  const UISceneDelegate* delegate() const override { return delegate_; }
  const UISceneSession* session_;
  const UISceneDelegate* delegate_;
};

struct Controller : UIViewController {
  explicit Controller(const UIView* itsView) : view(itsView) {}
  std::string_view className() const override { return "Controller"; }
  const UIView* viewIfLoaded() const override { return view; }
  const UIView* view;
};

struct NamingController : Controller, KvSessionIdentifierProtocol {
  NamingController(const UIView* itsView, Text text)
      : Controller(itsView), identifier(std::move(text)) {}
  Text sessionIdentifier() const override { return identifier; }
  Text identifier;
};

std::string identifierOf(const UISceneSession* session, const UISceneDelegate* delegate) {
  const Scene scene(session, delegate);
  return KvSessionManager::sessionIdentifierForScene(&scene);
}

bool exists(const std::string& path) {
  return std::filesystem::exists(std::filesystem::symlink_status(path));
}

/// The disk, where `operation` fails for the paths that end so.
std::unique_ptr<FileManager> failing(const std::string& operation, const std::string& ending) {
  return makeFailingFileManager(
      FileManager::defaultManager(), [=](std::string_view asked, std::string_view path) {
        return asked == operation && path.ends_with(ending) ? std::optional(Error("test", 1))
                                                            : std::nullopt;
      });
}

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

TEST_F(KvSessionManagerTest, TheGlobalIdentifierIsBareOnceAndAPathLaterWithAFolderOfItsOwn) {
  const std::string first = KvSessionManager::sessionIdentifierGlobal();
  EXPECT_THAT(first, MatchesRegex("SceneGlobal_[0-9A-F-]{36}"));
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(KvSessionManager::sessionIdentifierGlobal(), temporaryDirectory() + first);
  }
  const std::optional<std::string> folder = KvSessionManager::getNewValidFolderPathGlobal();
  // The temporary directory stands in it twice.
  EXPECT_EQ(folder, temporaryDirectory() + temporaryDirectory() + first);
  EXPECT_TRUE(std::filesystem::is_directory(*folder));
  EXPECT_EQ(UserDefaults::standardUserDefaults()->stringForKey("sessionTemporaryFolderPath"),
            first);
  UserDefaults::standardUserDefaults()->setObject(7, "sessionTemporaryFolderPath");
  EXPECT_THAT(KvSessionManager::sessionIdentifierGlobal(), StartsWith("SceneGlobal_"));
}

TEST_F(KvSessionManagerTest, AScenePutsItsDelegatesPrefixInFront) {
  const std::string globalPath = global();
  const Session session("ABC"), nameless("");
  const PlainDelegate plain;
  const NamingDelegate naming("Main"), empty(""), silent(std::nullopt);
  EXPECT_EQ(identifierOf(&session, &naming), "MainABC");
  EXPECT_EQ(identifierOf(&session, &empty), "ABC");  // an empty prefix is one
  EXPECT_EQ(identifierOf(&session, &silent), "SceneUnknownABC");
  EXPECT_EQ(identifierOf(&session, &plain), "SceneUnknownABC");
  EXPECT_EQ(identifierOf(&session, nullptr), "SceneUnknownABC");
  EXPECT_EQ(identifierOf(&nameless, &naming), globalPath);
  EXPECT_EQ(identifierOf(nullptr, &naming), globalPath);
  EXPECT_EQ(KvSessionManager::sessionIdentifierForScene(nullptr), globalPath);
}

TEST_F(KvSessionManagerTest, AControllerNamesItsSessionOrItsWindowsSceneDoes) {
  const std::string globalPath = global();
  const Session session("ABC");
  const NamingDelegate delegate("Main");
  const Scene scene(&session, &delegate);
  const auto view = std::make_shared<UIView>();
  const auto window = std::make_shared<UIWindow>();
  window->addSubview(view);
  EXPECT_EQ(KvSessionManager::sessionIdentifierForView(view.get()), globalPath);  // no scene yet
  window->setWindowScene(&scene);
  const UIView alone;
  EXPECT_EQ(KvSessionManager::sessionIdentifierForView(view.get()), "MainABC");
  EXPECT_EQ(KvSessionManager::sessionIdentifierForView(&alone), globalPath);
  EXPECT_EQ(KvSessionManager::sessionIdentifierForView(nullptr), globalPath);

  const auto identifierFor = [](const UIViewController& controller) {
    return KvSessionManager::sessionIdentifierForViewController(&controller);
  };
  EXPECT_EQ(identifierFor(NamingController(view.get(), "Mine")), "Mine");
  EXPECT_EQ(identifierFor(NamingController(view.get(), std::nullopt)), "MainABC");
  EXPECT_EQ(identifierFor(NamingController(&alone, std::nullopt)), globalPath);
  EXPECT_EQ(identifierFor(NamingController(nullptr, std::nullopt)), globalPath);  // not loaded
  EXPECT_EQ(identifierFor(Controller(view.get())), globalPath);
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
        std::exit(identifierOf(&session, nullptr).starts_with("SceneGlobal_") ? 0 : 1);
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
  EXPECT_FALSE(exists(temporaryDirectory() + "../x"));
  // One that cannot be made is answered all the same.
  const auto manager = failing("createDirectoryAtPath", "");
  const ScopedFileManager scope(*manager);
  const std::string unmade = temporaryDirectory() + "Unmade";
  EXPECT_EQ(KvSessionManager::getPathForSessionIdentifier("Unmade"), unmade);
  EXPECT_FALSE(exists(unmade));
}

TEST_F(KvSessionManagerTest, EveryNewFolderIsNewEmptyAndFlushedIntoTheOneAbove) {
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
  EXPECT_NE(first, second);
  EXPECT_THAT(*first, MatchesRegex(temporaryDirectory() + "New/[0-9A-F-]{36}"));
  EXPECT_TRUE(std::filesystem::is_empty(*first));
  std::string above = temporaryDirectory();
  above.pop_back();
  EXPECT_THAT(flushed, ::testing::ElementsAre(above, above + "/New", above + "/New"));
  EXPECT_FALSE(KvSessionManager::getNewValidFolderPathForSessionIdentifier(""));
}

TEST_F(KvSessionManagerTest, CleaningUpTakesWhatEndsInTheSuffixAndFollowsNoLink) {
  const testing::TemporaryFolder outside;
  testing::writeFile(outside.path("precious"), Data());
  const std::string root = temporaryDirectory();
  for (const char* name :
       {"MainABC/deep/er", "SceneUnknownABC", "ABCMain", "MainAbc", "StuckABC"}) {
    std::filesystem::create_directories(root + name);
  }
  testing::writeFile(root + "MainABC/deep/er/file", Data());
  std::filesystem::create_directory_symlink(outside.path(), root + "LinkABC");
  std::filesystem::create_directory_symlink(outside.path(), root + "MainABC/link");

  KvSessionManager::destroySessionForSessionIdentifierSuffix("");
  EXPECT_TRUE(exists(root + "MainABC"));

  const Session session("ABC");
  const Scene scene(&session, nullptr);
  KvSessionManager::destroySessionForScene(nullptr);
  KvSessionManager::destroySessionForSceneSession(nullptr);
  // One failing removal does not end it.
  const auto manager = failing("removeItemAtPath", "StuckABC");
  const ScopedFileManager scope(*manager);
  KvSessionManager::destroySessionForScene(&scene);
  for (const char* gone : {"MainABC", "SceneUnknownABC", "LinkABC"}) {
    EXPECT_FALSE(exists(root + gone)) << gone;
  }
  for (const char* kept : {"ABCMain", "MainAbc", "StuckABC"}) {
    EXPECT_TRUE(exists(root + kept)) << kept;
  }
  EXPECT_TRUE(exists(outside.path("precious")));
}

}  // namespace
}  // namespace FrameworkUtility
