#include <framework_utility/platform/foundation/values/platform_error.h>

#include <framework_utility/platform/foundation/values/value.h>

namespace FrameworkUtility::detail {

std::nullopt_t failed(Error* error, const ErrorCode& code) {
  if (error) *error = Error(code.domain, code.code, {{NSLocalizedDescriptionKey, code.message}});
  return std::nullopt;
}

}  // namespace FrameworkUtility::detail
