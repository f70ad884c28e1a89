#pragma once

#include <atomic>
#include <utility>

namespace FrameworkUtility {

/// Puts a service of the app's, or of a test's, in the place of the usual one while it lives. The
/// services that can be replaced have a name for it: `ScopedClock`, `ScopedFileManager` and so on.
/// Scopes end in the opposite order of their beginning. Make one before other threads run.
///
///     const ScopedLocale english(Locale("en_US"));
template <class Service>
class Scoped {
 public:
  explicit Scoped(Service service)
      : service_(std::move(service)), outer_(innermost_.exchange(&service_)) {}
  Scoped(const Scoped&) = delete;
  Scoped& operator=(const Scoped&) = delete;
  ~Scoped() { innermost_ = outer_; }

  /// The one in place; null where there is none and the usual one serves.
  static const Service* inPlace() { return innermost_; }

 private:
  static inline std::atomic<const Service*> innermost_ = nullptr;

  Service service_;
  const Service* outer_;
};

}  // namespace FrameworkUtility
