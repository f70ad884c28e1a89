#pragma once

#include <framework_utility/platform/foundation/values/value.h>

namespace FrameworkUtility::detail {

/// Whether two keys of a dictionary that was filled by `append` are the same.
bool hasEqualKeys(const Dictionary& dictionary);

}  // namespace FrameworkUtility::detail
