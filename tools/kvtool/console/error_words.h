#pragma once

#include <framework_utility/platform/foundation/values/error.h>

#include <string>

namespace kvtool {

/// The cause of an error as a sentence without a full stop, "permission denied": the system's where
/// it is the system that refused, else what the error itself says.
std::string plainWords(const FrameworkUtility::Error& error);

}  // namespace kvtool
