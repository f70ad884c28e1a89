#include <framework_utility/platform/foundation/app/application.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace FrameworkUtility {
namespace {

using ::testing::EndsWith;
using ::testing::StartsWith;

TEST(ApplicationTest, ReadsTheRunningProgramsFacts) {
  const Application facts = systemApplication();
  EXPECT_THAT(facts.executablePath, StartsWith("/"));
  EXPECT_THAT(facts.executablePath, EndsWith("/" + facts.name));
  EXPECT_THAT(facts.bundleIdentifier, EndsWith("." + facts.name));
  EXPECT_EQ(facts.groupSuiteName, "group." + facts.bundleIdentifier);
  EXPECT_EQ(facts.mainScreenScale, 1);
  EXPECT_FALSE(facts.isExtension());
}

TEST(ApplicationTest, TheHomeDirectoryIsTheUserDatabasesWhereTheEnvironmentNamesNone) {
  setenv("HOME", "/home/somebody", 1);
  EXPECT_EQ(systemApplication().homeDirectory, "/home/somebody");
  for (const bool empty : {true, false}) {
    empty ? setenv("HOME", "", 1) : unsetenv("HOME");
    EXPECT_THAT(systemApplication().homeDirectory, StartsWith("/"));
    EXPECT_NE(systemApplication().homeDirectory, "/home/somebody");
  }
}

TEST(ApplicationTest, LanguagesComeFromTheEnvironmentAsTags) {
  struct Case {
    const char *all, *messages, *lang, *language;
    std::vector<std::string> tags;
  };
  for (const Case& c : {Case{"", "", "", "", {"en"}},
                        {"", "", "pt_BR.UTF-8", "", {"pt-BR"}},
                        {"", "", "sr_RS.UTF-8@latin", "de:fr_CA", {"de", "fr-CA", "sr-RS"}},
                        {"", "fr_FR.UTF-8", "de_DE.UTF-8", "::fr_FR", {"fr-FR"}},
                        {"C.UTF-8", "fr_FR", "de_DE", "it", {"en"}},
                        {"ja_JP", "fr_FR", "de_DE", "C", {"ja-JP"}}}) {
    setenv("LC_ALL", c.all, 1);
    setenv("LC_MESSAGES", c.messages, 1);
    setenv("LANG", c.lang, 1);
    setenv("LANGUAGE", c.language, 1);
    EXPECT_EQ(systemApplication().preferredLanguages, c.tags) << c.lang << ' ' << c.language;
  }
}

TEST(ApplicationTest, AnExtensionIsToldByItsPathInAnyCase) {
  for (const auto& [path, expected] : {std::pair{"/a/Pelvar.app/PlugIns/Edit.appex/Edit", true},
                                       {"/a/Edit.APPEX/Edit", true},
                                       {"/a/Edit.appex", false},
                                       {"/a/Pelvar.app/Pelvar", false},
                                       {"", false}}) {
    Application facts;
    facts.executablePath = path;
    EXPECT_EQ(facts.isExtension(), expected) << path;
  }
}

TEST(ApplicationDeathTest, TheFactsAreSetBeforeTheirFirstUseOrNotAtAll) {
  Application facts = systemApplication();
  facts.name = "Pelvar";
  setApplication(facts);
  facts.name = "Kestrin";
  setApplication(facts);
  EXPECT_EQ(application().name, "Kestrin");
  EXPECT_DEATH(setApplication(facts), "setApplication: .*already in use");
}

}  // namespace
}  // namespace FrameworkUtility
