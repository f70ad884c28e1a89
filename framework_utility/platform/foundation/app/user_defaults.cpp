#include <framework_utility/platform/foundation/app/user_defaults.h>

#include <framework_utility/platform/foundation/app/application.h>
#include <framework_utility/platform/foundation/app/settings_file.h>
#include <framework_utility/platform/foundation/values/path.h>

#include <cstdlib>
#include <functional>
#include <map>
#include <mutex>
#include <utility>

namespace FrameworkUtility {

namespace {

class StoredUserDefaults final : public UserDefaults {
 public:
  explicit StoredUserDefaults(std::string folder) : file_(std::move(folder)) {}

  std::optional<Value> objectForKey(std::string_view key) const override {
    const std::lock_guard lock(mutex_);
    if (const auto own = notStored_.find(key); own != notStored_.end()) return own->second;
    const Value* value = file_.settings().find(key);
    return value ? std::optional(*value) : std::nullopt;
  }

  void setObject(const Value& value, std::string_view key) override { change(key, &value); }
  void removeObjectForKey(std::string_view key) override { change(key, nullptr); }

 private:
  void change(std::string_view key, const Value* value) {
    const std::lock_guard lock(mutex_);
    if (!file_.change(key, value)) {
      notStored_[std::string(key)] = value ? std::optional(*value) : std::nullopt;
    } else if (const auto own = notStored_.find(key); own != notStored_.end()) {
      notStored_.erase(own);
    }
  }

  mutable std::mutex mutex_;
  mutable detail::SettingsFile file_;  // reads again what others have changed
  /// What this process alone knows, a removed setting as an absent value.
  std::map<std::string, std::optional<Value>, std::less<>> notStored_;
};

class InMemoryUserDefaults final : public UserDefaults {
 public:
  std::optional<Value> objectForKey(std::string_view key) const override {
    const std::lock_guard lock(mutex_);
    const Value* value = settings_.find(key);
    return value ? std::optional(*value) : std::nullopt;
  }

  void setObject(const Value& value, std::string_view key) override {
    const std::lock_guard lock(mutex_);
    settings_.set(key, value);
  }

  void removeObjectForKey(std::string_view key) override {
    const std::lock_guard lock(mutex_);
    settings_.remove(key);
  }

 private:
  mutable std::mutex mutex_;
  Dictionary settings_;
};

class FailingUserDefaults final : public UserDefaults {
 public:
  std::optional<Value> objectForKey(std::string_view) const override { return std::nullopt; }
  void setObject(const Value&, std::string_view) override {}
  void removeObjectForKey(std::string_view) override {}
};

bool isFileName(std::string_view name) {
  constexpr std::size_t longest = 255;
  return !name.empty() && name.size() <= longest && name != "." && name != ".." &&
         name.find_first_of(std::string_view("/\0", 2)) == name.npos;
}

/// As the XDG Base Directory Specification says: a relative path is to be ignored.
std::string configurationFolder() {
  const char* variable = std::getenv("XDG_CONFIG_HOME");
  if (variable && variable[0] == '/') return variable;
  return paths::appendingPathComponent(application().homeDirectory, ".config");
}

/// The objects that are in use, by what they stand for. Never destroyed, for other objects'
/// destructors may still save.
struct Shared {
  std::mutex mutex;
  std::map<std::string, std::shared_ptr<UserDefaults>, std::less<>> suites;  // by folder

  static Shared& instance() {
    static Shared& shared = *new Shared;
    return shared;
  }
};

}  // namespace

std::shared_ptr<UserDefaults> UserDefaults::standardUserDefaults() {
  if (const auto* scoped = ScopedUserDefaults::inPlace()) return *scoped;
  if (std::shared_ptr<UserDefaults> own = withSuiteName(application().bundleIdentifier)) return own;
  static const std::shared_ptr<UserDefaults>& nameless =
      *new std::shared_ptr<UserDefaults>(makeInMemoryUserDefaults());
  return nameless;
}

/// What one object cannot store the others of the suite must see too, so there is one object a
/// suite.
std::shared_ptr<UserDefaults> UserDefaults::withSuiteName(std::string_view name) {
  if (!isFileName(name)) return nullptr;
  const std::string folder = paths::appendingPathComponent(configurationFolder(), name);
  Shared& shared = Shared::instance();
  const std::lock_guard lock(shared.mutex);
  std::shared_ptr<UserDefaults>& suite = shared.suites[folder];
  if (!suite) suite = std::make_shared<StoredUserDefaults>(folder);
  return suite;
}

std::optional<std::string> UserDefaults::stringForKey(std::string_view key) const {
  const std::optional<Value> value = objectForKey(key);
  if (!value) return std::nullopt;
  if (const auto* text = value->as<std::string>()) return *text;
  if (const auto* number = value->as<Number>()) return number->description();
  return std::nullopt;
}

bool UserDefaults::boolForKey(std::string_view key) const {
  const std::optional<Value> value = objectForKey(key);
  if (!value) return false;
  if (const auto* number = value->as<Number>()) return number->boolValue();
  const auto* text = value->as<std::string>();
  if (!text) return false;
  const std::size_t blanks = text->find_first_not_of(" \t");
  const std::size_t sign =
      blanks != text->npos && ((*text)[blanks] == '+' || (*text)[blanks] == '-');
  const std::size_t first = text->find_first_not_of('0', blanks + sign);
  return first != text->npos &&
         std::string_view("YyTt123456789").find((*text)[first]) != text->npos;
}

std::shared_ptr<UserDefaults> makeInMemoryUserDefaults() {
  return std::make_shared<InMemoryUserDefaults>();
}

std::shared_ptr<UserDefaults> makeFailingUserDefaults() {
  return std::make_shared<FailingUserDefaults>();
}

}  // namespace FrameworkUtility
