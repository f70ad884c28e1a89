#include <framework_utility/platform/foundation/values/url.h>
#include <framework_utility/platform/foundation/values/value.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <type_traits>
#include <unordered_set>
#include <utility>

namespace FrameworkUtility {
namespace {

// Of a temporary, nothing refers to it.
static_assert(!std::is_reference_v<decltype(std::declval<URL>().absoluteString())>);

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

TEST(URLTest, PartsOfAFileAddress) {
  const URL photo = URL::fileURLWithPath("/a/my photo.tar.gz");
  EXPECT_EQ(photo.absoluteString(), "file:///a/my%20photo.tar.gz");
  EXPECT_EQ(photo.pathExtension(), "gz");
  EXPECT_EQ(photo.deletingPathExtension().path(), "/a/my photo.tar");
  EXPECT_EQ(photo.deletingLastPathComponent().absoluteString(), "file:///a/");
  EXPECT_EQ(photo.appendingPathExtension("z")->path(), "/a/my photo.tar.gz.z");
  EXPECT_FALSE(photo.appendingPathExtension("a b"));

  // A folder's address keeps the slash that its path loses.
  const URL folder = URL::fileURLWithPath("/p.q/");
  EXPECT_EQ(folder.path(), "/p.q");
  EXPECT_EQ(folder.absoluteString(), "file:///p.q/");
  EXPECT_EQ(folder.deletingPathExtension().absoluteString(), "file:///p/");
  EXPECT_EQ(folder.appendingPathExtension("e")->absoluteString(), "file:///p.q.e/");

  const URL root = URL::fileURLWithPath("/");
  EXPECT_EQ(root.deletingLastPathComponent(), root);
  EXPECT_FALSE(root.appendingPathExtension("e"));
}

TEST(URLTest, OtherAddresses) {
  struct Case {
    const char* text;
    std::optional<std::string> path;
    bool isFile;
  };
  const Case cases[] = {
      {"https://host/a%20b/c.jpg?x=/y#z", "/a b/c.jpg", false},
      {"https://host", std::nullopt, false},
      {"https://host?/no", std::nullopt, false},
      {"FILE://localhost/a", "/a", true},
      {"mailto:a@b.c", std::nullopt, false},
      {"photo.jpg", "photo.jpg", false},
      {"1a:b", "1a:b", false},
      {"#fragment", std::nullopt, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    const std::optional<URL> url = URL::withString(c.text);
    ASSERT_TRUE(url);
    EXPECT_EQ(url->path(), c.path);
    EXPECT_EQ(url->isFileURL(), c.isFile);
  }
  EXPECT_EQ(URL::withString("https://host?q")->appendingPathComponent("a b").absoluteString(),
            "https://host/a%20b?q");
  EXPECT_EQ(URL::withString("mailto:a@b.c")->appendingPathComponent("d").absoluteString(),
            "mailto:a@b.c");
  for (const char* text : {"", "a b", "100%.jpg", "%2", "%GG", "a\x01", "ü", "a#b#c", "<a>"}) {
    EXPECT_FALSE(URL::withString(text)) << text;
  }
}

/// The examples of RFC 3986, section 5.4.
TEST(URLTest, OneAddressNamesAnother) {
  const URL base = *URL::withString("http://a/b/c/d;p?q");
  const std::pair<const char*, const char*> cases[] = {
      {"g:h", "g:h"},
      {"g", "http://a/b/c/g"},
      {"./g", "http://a/b/c/g"},
      {"g/", "http://a/b/c/g/"},
      {"/g", "http://a/g"},
      {"//g", "http://g"},
      {"?y", "http://a/b/c/d;p?y"},
      {"g?y", "http://a/b/c/g?y"},
      {"#s", "http://a/b/c/d;p?q#s"},
      {"g#s", "http://a/b/c/g#s"},
      {"g?y#s", "http://a/b/c/g?y#s"},
      {";x", "http://a/b/c/;x"},
      {"g;x?y#s", "http://a/b/c/g;x?y#s"},
      {"", "http://a/b/c/d;p?q"},
      {".", "http://a/b/c/"},
      {"./", "http://a/b/c/"},
      {"..", "http://a/b/"},
      {"../", "http://a/b/"},
      {"../g", "http://a/b/g"},
      {"../..", "http://a/"},
      {"../../g", "http://a/g"},
      {"../../../g", "http://a/g"},
      {"/./g", "http://a/g"},
      {"/../g", "http://a/g"},
      {"g.", "http://a/b/c/g."},
      {".g", "http://a/b/c/.g"},
      {"..g", "http://a/b/c/..g"},
      {"./../g", "http://a/b/g"},
      {"./g/.", "http://a/b/c/g/"},
      {"g/./h", "http://a/b/c/g/h"},
      {"g/../h", "http://a/b/c/h"},
      {"g;x=1/../y", "http://a/b/c/y"},
      {"g?y/../x", "http://a/b/c/g?y/../x"},
      {"g#s/../x", "http://a/b/c/g#s/../x"},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(URL::withString(text, base)->absoluteString(), expected) << text;
  }
  EXPECT_EQ(URL::withString("g", *URL::withString("http://a?q"))->absoluteString(), "http://a/g");
  EXPECT_EQ(URL::withString("../g", *URL::withString("a/b/c"))->absoluteString(), "a/g");
  EXPECT_EQ(URL::withString("..", *URL::withString("a"))->absoluteString(), "./");
  EXPECT_FALSE(URL::withString("", *URL::withString("#a")));
  EXPECT_FALSE(URL::withString("a b", base));
}

}  // namespace
}  // namespace FrameworkUtility
