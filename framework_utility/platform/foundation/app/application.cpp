#include <framework_utility/platform/foundation/app/application.h>

#include <framework_utility/platform/foundation/values/path.h>
#include <framework_utility/platform/foundation/values/stop.h>

#include <pwd.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>

namespace FrameworkUtility {

namespace {

constexpr std::string_view familyPrefix = FRAMEWORK_UTILITY_FAMILY_PREFIX;

std::string environment(const char* variable) {
  const char* value = std::getenv(variable);
  return value ? value : "";
}

std::string executablePath() {
  std::array<char, PATH_MAX> buffer;
  const ssize_t length = readlink("/proc/self/exe", buffer.data(), buffer.size());
  if (length <= 0) return {};
  std::string_view path(buffer.data(), static_cast<std::size_t>(length));
  // What the system appends when the app was replaced while it runs; the app is the same.
  constexpr std::string_view replaced = " (deleted)";
  if (path.ends_with(replaced)) path.remove_suffix(replaced.size());
  return std::string(path);
}

std::string homeDirectory() {
  if (std::string home = environment("HOME"); !home.empty()) return home;
  std::vector<char> texts(1024);
  passwd entry{};
  passwd* found = nullptr;
  while (getpwuid_r(getuid(), &entry, texts.data(), texts.size(), &found) == ERANGE &&
         texts.size() < (1 << 20)) {
    texts.resize(texts.size() * 2);
  }
  return found && found->pw_dir ? found->pw_dir : "/";
}

/// The name of the folder "Name.app" that the executable lies in, an extension's at some depth.
std::optional<std::string> enclosingAppName(std::string_view executable) {
  const std::size_t end = executable.find(".app/");
  if (end == std::string_view::npos) return std::nullopt;
  return paths::lastPathComponent(executable.substr(0, end));
}

std::string machineIdentifier() {
  utsname system{};
  return uname(&system) == 0 ? system.machine : "";
}

/// "pt-BR" of "pt_BR.UTF-8@euro"; empty for the locales that mean no language.
std::string languageTag(std::string_view locale) {
  std::string tag(locale.substr(0, locale.find_first_of(".@")));
  std::replace(tag.begin(), tag.end(), '_', '-');
  return tag == "C" || tag == "POSIX" ? "" : tag;
}

/// As gettext chooses: `LANGUAGE` is a list and leads, unless the locale has no language at all.
std::vector<std::string> preferredLanguages() {
  std::string locale;
  for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    if (locale.empty()) locale = environment(variable);
  }
  std::vector<std::string> tags;
  if (const std::string own = languageTag(locale); !own.empty()) {
    std::string list = environment("LANGUAGE") + ":" + own;
    for (std::size_t start = 0, end; start < list.size(); start = end + 1) {
      end = std::min(list.find(':', start), list.size());
      std::string tag = languageTag(std::string_view(list).substr(start, end - start));
      if (!tag.empty() && std::find(tags.begin(), tags.end(), tag) == tags.end()) {
        tags.push_back(std::move(tag));
      }
    }
  }
  if (tags.empty()) tags.emplace_back("en");
  return tags;
}

std::mutex factsMutex;
std::optional<Application> givenFacts;
bool factsInUse = false;

Application takeFacts() {
  const std::lock_guard lock(factsMutex);
  factsInUse = true;
  return givenFacts ? *std::move(givenFacts) : systemApplication();
}

}  // namespace

bool Application::isExtension() const {
  constexpr std::string_view mark = ".appex/";
  return std::search(executablePath.begin(), executablePath.end(), mark.begin(), mark.end(),
                     [](char c, char lower) {
                       return (c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c) == lower;
                     }) != executablePath.end();
}

const Application& application() {
  // Never destroyed: other objects' destructors may still ask.
  static const Application& facts = *new Application(takeFacts());
  return facts;
}

void setApplication(Application facts) {
  const std::lock_guard lock(factsMutex);
  if (factsInUse) stop("setApplication: the application's facts are already in use");
  givenFacts = std::move(facts);
}

Application systemApplication() {
  Application facts;
  facts.executablePath = executablePath();
  facts.name = paths::lastPathComponent(facts.executablePath);
  facts.bundleIdentifier = std::string(familyPrefix) + "." + facts.name;
  facts.homeDirectory = homeDirectory();
  facts.groupSuiteName = "group." + std::string(familyPrefix) + "." +
                         enclosingAppName(facts.executablePath).value_or(facts.name);
  facts.machineIdentifier = machineIdentifier();
  facts.preferredLanguages = preferredLanguages();
  return facts;
}

}  // namespace FrameworkUtility
