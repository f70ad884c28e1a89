#include <framework_utility/platform/foundation/platform_error.h>

#include <framework_utility/platform/foundation/value.h>

namespace FrameworkUtility::detail {

std::nullopt_t failed(Error* error, const ErrorCode& code) {
  if (error) *error = Error(code.domain, code.code, {{NSLocalizedDescriptionKey, code.message}});
  return std::nullopt;
}

}  // namespace FrameworkUtility::detail
