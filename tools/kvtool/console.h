#pragma once

#include <framework_utility/platform/foundation/error.h>

#include <string_view>

namespace kvtool {

/// Writes one line to standard output. Whether it arrived shows in `flushOutput`.
void printLine(std::string_view line);
/// Writes "kvtool: FILE: PROBLEM" to standard error.
void printProblem(std::string_view file, std::string_view problem);
/// The same with the error's text, domain and code.
void printProblem(std::string_view file, const FrameworkUtility::Error& error);
/// False when something that was printed could not be written, to a full disk for example.
[[nodiscard]] bool flushOutput();

}  // namespace kvtool
