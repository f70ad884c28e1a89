#pragma once

#include <framework_utility/platform/foundation/values/error.h>

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kvtool {

/// Writes to standard output. Whether it arrived shows in `flushOutput`.
void print(std::string_view text);
/// The same with the end of a line.
void printLine(std::string_view line);
/// The same of bytes as they are.
void printBytes(std::span<const std::byte> bytes);

/// Writes "kvtool: PROBLEM" to standard error.
void printProblem(std::string_view problem);
/// Writes "kvtool: FILE: PROBLEM" to standard error.
void printProblem(std::string_view file, std::string_view problem);
/// The same with the cause in plain words, and the error's domain and code in brackets.
void printProblem(std::string_view file, const FrameworkUtility::Error& error);

/// False, and reported, when something that was printed could not be written, to a full disk for
/// example.
[[nodiscard]] bool flushOutput();

/// Does `work` to each file, to the others too when one fails; says whether all of it worked. Of
/// several files there is a summary in the end, "29 of 30 saved, 1 failed", and while they are
/// worked on their progress, where standard error is a terminal.
[[nodiscard]] bool forEachFile(const std::vector<std::string>& files, std::string_view done,
                               const std::function<bool(const std::string& file)>& work);

}  // namespace kvtool
