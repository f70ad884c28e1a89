#include <framework_utility/platform/foundation/archives/coder_failure.h>

#include <framework_utility/platform/foundation/values/value.h>

namespace FrameworkUtility::detail {

Error coderError(const ErrorCode& code, std::string_view reason) {
  return Error(code.domain, code.code,
               {{NSLocalizedDescriptionKey, code.message}, {NSDebugDescriptionErrorKey, reason}});
}

}  // namespace FrameworkUtility::detail
