#pragma once

#include <framework_utility/platform/foundation/archives/coding.h>

#include <span>
#include <string_view>

namespace FrameworkUtility::detail {

/// The class that archives call `name`; null when there is none. Good until the process ends.
const CodingClass* codingClassNamed(std::string_view name);

/// Whether the class or one of its superclasses is in `names`.
bool isKindOfAny(const CodingClass& codingClass, const ClassNames& names);

// The platform's own classes, whose objects are values here.

std::span<const CodingClass> foundationClasses();

/// The class of a value that is no object.
const CodingClass& foundationClassOf(const Value& value);

/// Writes the parts of a date, a URL, an array, a dictionary or the null value.
void encodeFoundationValue(const Value& value, NSKeyedArchiver& coder);

}  // namespace FrameworkUtility::detail
