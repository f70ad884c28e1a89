#pragma once

#include <framework_utility/platform/foundation/values/scoped.h>
#include <framework_utility/platform/foundation/values/value.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace FrameworkUtility {

/// Settings that outlive the process, one property list a suite:
/// "$XDG_CONFIG_HOME/<suite>/defaults.plist", or below "~/.config" where the variable is not an
/// absolute path. A file that is no property list counts as empty, and the next write keeps it
/// aside as "defaults-damaged-" and a UUID.
///
/// A setting that cannot be stored, for its value is none of a property list or the disk refuses,
/// is kept for this process only; nothing reports it.
///
/// Thread: any. Processes may share a suite: a write replaces the file whole, under a lock, and all
/// of them see it at once. A process that ends within a write leaves the old file or the new one.
class UserDefaults {
 public:
  virtual ~UserDefaults() = default;

  /// The app's own settings: the suite named by `application().bundleIdentifier`, or settings in
  /// memory where that is no file name.
  /// Selector: standardUserDefaults
  static std::shared_ptr<UserDefaults> standardUserDefaults();
  /// The settings that the apps of a group share; null for a name that is no file name.
  /// Selector: initWithSuiteName:
  static std::shared_ptr<UserDefaults> withSuiteName(std::string_view name);

  /// Absent when never set: `false` that was set is present.
  /// Selector: objectForKey:
  virtual std::optional<Value> objectForKey(std::string_view key) const = 0;
  /// Selector: setObject:forKey:
  virtual void setObject(const Value& value, std::string_view key) = 0;
  /// Nothing when it was never set.
  /// Selector: removeObjectForKey:
  virtual void removeObjectForKey(std::string_view key) = 0;

  /// The text, or the number as text.
  /// Selector: stringForKey:
  std::optional<std::string> stringForKey(std::string_view key) const;
  /// Whether the number differs from 0, or the text begins like "YES", "true" or a number that
  /// does. False when missing.
  /// Selector: boolForKey:
  bool boolForKey(std::string_view key) const;
};

/// Settings in memory, and ones that forget what they are given.
std::shared_ptr<UserDefaults> makeInMemoryUserDefaults();
std::shared_ptr<UserDefaults> makeFailingUserDefaults();

/// In the standard settings' place.
using ScopedUserDefaults = Scoped<std::shared_ptr<UserDefaults>>;

}  // namespace FrameworkUtility
