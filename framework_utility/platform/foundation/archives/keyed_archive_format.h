#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace FrameworkUtility::detail {

// A keyed archive is a property list: a dictionary with the table of all objects, and their numbers
// in it under the keys that the archive's user chose. An object is a text, a number or data, or a
// dictionary of its parts with the number of its class's record, which is in the table too.

inline constexpr std::string_view versionKey = "$version";
inline constexpr std::string_view archiverKey = "$archiver";
inline constexpr std::string_view topKey = "$top";
inline constexpr std::string_view objectsKey = "$objects";

inline constexpr std::int64_t archiveVersion = 100000;
inline constexpr std::string_view archiverName = "NSKeyedArchiver";

/// What stands in the table for nil, always as the first.
inline constexpr std::string_view nilText = "$null";
inline constexpr std::uint64_t nilNumber = 0;

inline constexpr std::string_view classKey = "$class";
inline constexpr std::string_view classNameKey = "$classname";
inline constexpr std::string_view classesKey = "$classes";
inline constexpr std::string_view classHintsKey = "$classhints";
inline constexpr std::string_view rootClassName = "NSObject";

/// A thread's stack is sure to hold objects that nest this deep.
inline constexpr std::size_t largestDepth = 512;
/// How many values the property list of an archive of so many objects may hold.
constexpr std::size_t valuesOf(std::size_t objects) {
  constexpr std::size_t each = 16;
  return std::min(objects, std::numeric_limits<std::size_t>::max() / each) * each;
}

/// The key in an object's dictionary: one with "$" in front gets one more, so that none is taken
/// for the archive's own.
inline std::string escapedKey(std::string_view key) {
  return key.starts_with('$') ? '$' + std::string(key) : std::string(key);
}

}  // namespace FrameworkUtility::detail
