#include <framework_utility/platform/imageio/profile_description.h>

#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <tests/platform/imageio/formats/jpeg_file.h>

#include <gtest/gtest.h>

namespace FrameworkUtility::testing {
namespace {

using namespace std::string_literals;

std::string u32(std::size_t number) { return u16(number >> 16) + u16(number); }

/// What a profile is called whose one tag holds this.
std::string nameOf(const std::string& tag, const std::string& code = "desc") {
  const std::string profile = std::string(36, '\0') + "acsp" + std::string(88, '\0') + u32(1) +
                              code + u32(144) + u32(tag.size()) + tag;
  detail::MetadataBudget budget;
  return detail::profileDescription(dataOf(profile), budget);
}

/// English in UTF-16, the other language before it.
std::string localized(const std::string& utf16) {
  return "mluc\0\0\0\0"s + u32(2) + u32(12) + "deDE" + u32(2) + u32(40) + "enUS" +
         u32(utf16.size()) + u32(42) + "\0D"s + utf16;
}

TEST(ProfileDescription, NamesAreTextWhateverTheBytes) {
  const std::pair<std::string, const char*> cases[] = {
      {"desc\0\0\0\0\0\0\0\6Name\xE9\0tail"s, "Name\u00E9"},
      {"desc\0\0\0\0\0\0\0\x7FName"s, "Name"},
      {"text\0\0\0\0\0\0\0\4Name"s, ""},
      {localized("\0A\x20\xAC\0\0\0B"s), "A\u20AC"},
      {localized("\xD8\x3D\xDE\x00!"s + "!"s), "\U0001F600\u2121"},
      {localized("\xD8\x3D\0A"s), "\uFFFDA"},
      {localized("\xDE\x00\0A"s), "\uFFFDA"},
      {localized("\xDE\x00\xD8\x3D"s), "\uFFFD\uFFFD"},
      {localized("\0A\xD8"s), "A"},
      {localized("").substr(0, 30), ""}};
  for (const auto& [tag, name] : cases) EXPECT_EQ(nameOf(tag), name) << tag;
  EXPECT_EQ(nameOf(cases[0].first, "cprt"), "");
}

}  // namespace
}  // namespace FrameworkUtility::testing
