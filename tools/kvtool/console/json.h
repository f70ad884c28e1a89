#pragma once

#include <framework_utility/platform/foundation/values/value.h>

#include <functional>
#include <string>
#include <string_view>

namespace kvtool {

/// `value` as one line of JSON. Keys are texts, those that are numbers too. Numbers read back as
/// they were; what JSON has no number for (infinities, NaN) is null. Bytes are an object with one
/// member, {"base64": "..."}. Dates are texts, "2024-05-06T07:08:09Z". What is not UTF-8 in a text
/// becomes U+FFFD.
std::string json(const FrameworkUtility::Value& value);

/// Takes a piece of a text.
using JsonSink = std::function<void(std::string_view)>;

/// The same, given piece by piece: what a file says of itself can be large.
void writeJson(const FrameworkUtility::Value& value, const JsonSink& sink);
/// `text` as it stands between quotation marks.
void writeEscaped(std::string_view text, const JsonSink& sink);

/// `text` between quotation marks, with everything escaped that must not stand there.
std::string jsonText(std::string_view text);

}  // namespace kvtool
