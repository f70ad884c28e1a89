#include <framework_utility/platform/foundation/values/path.h>
#include <framework_utility/platform/foundation/values/url.h>
#include <framework_utility/platform/foundation/values/value.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <tuple>
#include <type_traits>
#include <unordered_set>
#include <utility>

namespace FrameworkUtility {
namespace {

using namespace paths;

// Of a temporary, nothing refers to it.
static_assert(!std::is_reference_v<decltype(std::declval<URL>().absoluteString())>);

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

TEST(URLTest, FileNamesComeBackUnchanged) {
  for (const std::string name : {"a%20b.jpg", "100%.jpg", "a#b?.jpg", "a;b:c.jpg", "ü\u2028 .jpg",
                                 "\xFF\xFE\x80.jpg", "\\", "[x]", "a\nb", "%2F", "..."}) {
    const std::string path = "/tmp/" + name;
    const URL url = URL::fileURLWithPath(path);
    EXPECT_EQ(url.path(), path);
    const std::filesystem::path native = *url.path();
    EXPECT_EQ(URL::fileURLWithPath(native), url);
    EXPECT_EQ(std::unordered_set({url}).count(URL::fileURLWithPath(native)), 1U);
    EXPECT_EQ(url.lastPathComponent(), name);
    EXPECT_EQ(URL::fileURLWithPath("/tmp").appendingPathComponent(name), url);
    const std::optional<URL> read = URL::withString(url.absoluteString());
    ASSERT_TRUE(read) << url;
    EXPECT_EQ(read->path(), path);
    EXPECT_TRUE(read->isFileURL());
  }
}

TEST(URLTest, RelativePathsStartAtTheWorkingDirectory) {
  EXPECT_EQ(URL::fileURLWithPath("a b").path(), (std::filesystem::current_path() / "a b").string());
  EXPECT_EQ(URL::fileURLWithPath("").path(), std::filesystem::current_path().string());
}

TEST(URLTest, PathsAreTakenFromAddressesAndPutBack) {
  struct Case {
    const char *text, *path, *folder, *withoutExtension, *longer, *extended;
  };
  const Case cases[] = {
      {"file:///a/my%20photo.tar.gz", "/a/my photo.tar.gz", "file:///a/",
       "file:///a/my%20photo.tar", "file:///a/my%20photo.tar.gz/b%20c",
       "file:///a/my%20photo.tar.gz.z"},
      // A folder's address keeps the slash that its path loses.
      {"file:///p.q/", "/p.q", "file:///", "file:///p/", "file:///p.q/b%20c", "file:///p.q.z/"},
      {"file:///", "/", "file:///", "file:///", "file:///b%20c", "none"},
      {"FILE://localhost/a", "/a", "FILE://localhost/", "FILE://localhost/a",
       "FILE://localhost/a/b%20c", "FILE://localhost/a.z"},
      {"https://host/%c3%BC/c.jpg?x=/y#z", "/ü/c.jpg", "https://host/%C3%BC/?x=/y#z",
       "https://host/%C3%BC/c?x=/y#z", "https://host/%C3%BC/c.jpg/b%20c?x=/y#z",
       "https://host/%C3%BC/c.jpg.z?x=/y#z"},
      {"https://host", "none", "https://host", "https://host", "https://host/b%20c", "none"},
      {"https://host?/no", "none", "https://host?/no", "https://host?/no", "https://host/b%20c?/no",
       "none"},
      {"mailto:a@b.c", "none", "mailto:a@b.c", "mailto:a@b.c", "mailto:a@b.c", "none"},
      {"AZ+-.09az:/a", "/a", "AZ+-.09az:/", "AZ+-.09az:/a", "AZ+-.09az:/a/b%20c", "AZ+-.09az:/a.z"},
      {"1a:b", "1a:b", "./", "1a:b", "1a:b/b%20c", "1a:b.z"},
      {"a/photo.jpg", "a/photo.jpg", "a/", "a/photo", "a/photo.jpg/b%20c", "a/photo.jpg.z"},
      {"photo.jpg", "photo.jpg", "./", "photo", "photo.jpg/b%20c", "photo.jpg.z"},
      {"#fragment", "none", "#fragment", "#fragment", "b%20c#fragment", "none"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    const std::optional<URL> url = URL::withString(c.text);
    ASSERT_TRUE(url);
    EXPECT_EQ(url->path().value_or("none"), c.path);
    EXPECT_EQ(url->isFileURL(), std::string_view("fF").find(c.text[0]) != std::string_view::npos);
    EXPECT_EQ(url->deletingLastPathComponent().absoluteString(), c.folder);
    EXPECT_EQ(url->deletingPathExtension().absoluteString(), c.withoutExtension);
    EXPECT_EQ(url->appendingPathComponent("b c").absoluteString(), c.longer);
    const std::optional<URL> extended = url->appendingPathExtension("z");
    EXPECT_EQ(extended ? extended->absoluteString() : "none", c.extended);
    EXPECT_FALSE(url->appendingPathExtension("a b"));
    EXPECT_EQ(url->appendingPathExtension(""), url);
  }
  EXPECT_EQ(URL::fileURLWithPath("/AZaz09-._~!$&'()*+,:=@;?#[]").absoluteString(),
            "file:///AZaz09-._~!$&'()*+,:=@%3B%3F%23%5B%5D");
  EXPECT_EQ(URL::fileURLWithPath("/a.gz").pathExtension(), "gz");
  EXPECT_EQ(URL::withString("%09%aF%Fa-._~:/?#[]@!$&'()*+,;=")->path(), "\x09\xAF\xFA-._~:");
  for (const char* other : {"fil:///a", "files:///a", "file", "//file/a"}) {
    EXPECT_FALSE(URL::withString(other)->isFileURL()) << other;
  }
  for (const char* text :
       {"", "a b", "100%.jpg", "%2", "%GG", "%2g", "%:0", "a\x01", "ü", "a#b#c", "<a>"}) {
    EXPECT_FALSE(URL::withString(text)) << text;
  }
}

/// The examples of RFC 3986, section 5.4.
TEST(URLTest, OneAddressNamesAnother) {
  const URL base = *URL::withString("http://a/b/c/d;p?q");
  std::istringstream cases(R"(
      g:h            g:h                        g              http://a/b/c/g
      ./g            http://a/b/c/g             g/             http://a/b/c/g/
      /g             http://a/g                 //g            http://g
      ?y             http://a/b/c/d;p?y         g?y            http://a/b/c/g?y
      #s             http://a/b/c/d;p?q#s       g#s            http://a/b/c/g#s
      g?y#s          http://a/b/c/g?y#s         ;x             http://a/b/c/;x
      g;x?y#s        http://a/b/c/g;x?y#s       .              http://a/b/c/
      ./             http://a/b/c/              ..             http://a/b/
      ../            http://a/b/                ../g           http://a/b/g
      ../..          http://a/                  ../../g        http://a/g
      ../../../g     http://a/g                 /./g           http://a/g
      /../g          http://a/g                 g.             http://a/b/c/g.
      .g             http://a/b/c/.g            ..g            http://a/b/c/..g
      ./../g         http://a/b/g               ./g/.          http://a/b/c/g/
      g/./h          http://a/b/c/g/h           g/../h         http://a/b/c/h
      g;x=1/../y     http://a/b/c/y             g?y/../x       http://a/b/c/g?y/../x
      g#s/../x       http://a/b/c/g#s/../x)");
  for (std::string text, expected; cases >> text >> expected;) {
    EXPECT_EQ(URL::withString(text, base)->absoluteString(), expected) << text;
  }
  EXPECT_EQ(URL::withString("", base), base);
  for (const auto& [text, from, expected] :
       {std::tuple{"g", "http://a?q", "http://a/g"}, {"../g", "a/b/c", "a/g"}, {"..", "a", "./"}}) {
    EXPECT_EQ(URL::withString(text, *URL::withString(from))->absoluteString(), expected) << text;
  }
  EXPECT_FALSE(URL::withString("", *URL::withString("#a")));
  EXPECT_FALSE(URL::withString("a b", base));
}

}  // namespace
}  // namespace FrameworkUtility
