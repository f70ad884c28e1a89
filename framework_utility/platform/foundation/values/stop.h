#pragma once

#include <string_view>

namespace FrameworkUtility {

/// Prints `message` as one line to standard error and aborts, in every kind of build: the answer to
/// an impossible argument.
[[noreturn]] void stop(std::string_view message);

}  // namespace FrameworkUtility
