#include <framework_utility/platform/foundation/values/path.h>

#include <gtest/gtest.h>

#include <tuple>

namespace FrameworkUtility::paths {
namespace {

TEST(PathTest, NamesAndExtensions) {
  struct Case {
    const char *path, *name, *extension, *withoutExtension, *folder;
  };
  const Case cases[] = {
      {"/a/b.c/", "b.c", "c", "/a/b", "/a"},
      {"/a/b/c.txt", "c.txt", "txt", "/a/b/c", "/a/b"},
      {"archive.tar.gz", "archive.tar.gz", "gz", "archive.tar", ""},
      {".hidden", ".hidden", "", ".hidden", ""},
      {"..zip", "..zip", "", "..zip", ""},
      {"a.", "a.", "", "a.", ""},
      {".name.txt", ".name.txt", "txt", ".name", ""},
      {"baz..zip", "baz..zip", "zip", "baz.", ""},
      {"/", "/", "", "/", "/"},
      {"//", "/", "", "//", "/"},
      {"", "", "", "", ""},
      {"/a", "a", "", "/a", "/"},
      {"a", "a", "", "a", ""},
      {"a/b/", "b", "", "a/b", "a"},
      {"a//b", "b", "", "a//b", "a"},
      {"..", "..", "", "..", ""},
      {"x. y", "x. y", "", "x. y", ""},
      {"a.b/c", "c", "", "a.b/c", "a.b"},
      {"x.j\u202Epg", "x.j\u202Epg", "", "x.j\u202Epg", ""},
      {"x.\xE2\x80", "x.\xE2\x80", "\xE2\x80", "x", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.path);
    EXPECT_EQ(lastPathComponent(c.path), c.name);
    EXPECT_EQ(pathExtension(c.path), c.extension);
    EXPECT_EQ(deletingPathExtension(c.path), c.withoutExtension);
    EXPECT_EQ(deletingLastPathComponent(c.path), c.folder);
  }
}

TEST(PathTest, OneSlashBetweenComponents) {
  for (const auto& [path, component, whole] : {std::tuple{"/a", "b", "/a/b"},
                                               {"/a/", "b", "/a/b"},
                                               {"/a", "/b", "/a/b"},
                                               {"/a//", "//b", "/a/b"},
                                               {"/", "b", "/b"},
                                               {"", "b", "b"},
                                               {"a", "", "a"},
                                               {"a", "b/c/", "a/b/c/"}}) {
    EXPECT_EQ(appendingPathComponent(path, component), whole) << path << ' ' << component;
  }
}

TEST(PathTest, OnlyValidExtensionsAreAppended) {
  EXPECT_EQ(appendingPathExtension("/p/", "e"), "/p.e");
  EXPECT_EQ(appendingPathExtension("v1.2 final", "jpeg"), "v1.2 final.jpeg");
  EXPECT_EQ(appendingPathExtension("/", "e"), "/");
  for (const char* invalid :
       {"", "a b", "a/b", "\u061C", "x\u200E", "\u200Fx", "\u202A", "\u202E", "\u2066", "\u2069"}) {
    EXPECT_FALSE(isValidPathExtension(invalid)) << invalid;
    EXPECT_EQ(appendingPathExtension("/p/", invalid), "/p/") << invalid;
  }
  for (const char* valid : {"jpg", "e.f", "é", "\u200D", "\u2029", "\u2070", "\u2065"}) {
    EXPECT_TRUE(isValidPathExtension(valid)) << valid;
  }
}

}  // namespace
}  // namespace FrameworkUtility::paths
