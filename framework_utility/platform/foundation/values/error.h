#pragma once

#include <framework_utility/platform/foundation/values/description.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace FrameworkUtility {

class Dictionary;

inline constexpr std::string_view NSUnderlyingErrorKey = "NSUnderlyingError";
inline constexpr std::string_view NSLocalizedDescriptionKey = "NSLocalizedDescription";

/// One documented failure. Each domain is a struct of these, `KvImageMetadataError` for
/// "NSTervixKvImageMetadataErrorDomain", so that a code cannot be compared in the wrong domain.
struct ErrorCode {
  std::string_view domain;
  std::int64_t code;
  std::string_view message;
};

/// Why an operation failed. A value of one pointer; copies share their immutable contents.
///
/// A fallible operation takes `Error* error = nullptr` last. When it fails it gives an empty result
/// and fills `*error`; when it succeeds it leaves `*error` as it was. So ask the result, never the
/// error, whether a call succeeded; an `Error` has no truth value.
///
/// Thread: any.
class Error {
 public:
  Error() = default;  ///< What a caller declares: empty domain, code 0.
  Error(std::string_view domain, std::int64_t code);
  /// Errors of the library's own domains are made by the error factory alone.
  Error(std::string_view domain, std::int64_t code, Dictionary userInfo);
  ~Error();  // takes a chain of a million causes apart without recursion
  Error(const Error&) = default;
  Error& operator=(const Error&) = default;

  const std::string& domain() const&;
  std::string domain() const&& { return domain(); }
  std::int64_t code() const;
  const Dictionary& userInfo() const&;
  Dictionary userInfo() const&&;

  /// Whether domain and code are those of `code`; the message does not count.
  bool is(const ErrorCode& code) const;

  /// The text under `NSLocalizedDescriptionKey`, else one made of domain and code.
  std::string localizedDescription() const;
  /// The error under `NSUnderlyingErrorKey`.
  std::optional<Error> underlyingError() const;

  /// "Error Domain=D Code=1" and the localised description in quotes.
  std::string description() const;
  /// The same domain, code and user information, all underlying errors included.
  friend bool operator==(const Error& a, const Error& b);

 private:
  struct Contents;
  std::shared_ptr<const Contents> contents_;  // null for the default
};

}  // namespace FrameworkUtility
