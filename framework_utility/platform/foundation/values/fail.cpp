#include <framework_utility/platform/foundation/values/fail.h>

#include <utility>

namespace FrameworkUtility::detail {

Error platformError(const ErrorCode& code, std::string_view description,
                    const Dictionary& userInfo) {
  Dictionary all;
  if (description.empty()) description = code.message;
  if (!description.empty()) all.set(Key::withConstant(NSLocalizedDescriptionKey), description);
  for (const auto& [key, value] : userInfo) all.set(key, value);
  return Error(code.domain, code.code, std::move(all));
}

Failure fail(Error* error, const ErrorCode& code, std::string_view description,
             const Dictionary& userInfo) {
  if (error) *error = platformError(code, description, userInfo);
  return {};
}

}  // namespace FrameworkUtility::detail
