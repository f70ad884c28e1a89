#pragma once

#include <initializer_list>
#include <string>

namespace FrameworkUtility::detail {

/// "1.5, 2": each number with the fewest digits that read back as the same double, whatever the
/// locale, as the platform writes places.
std::string numberList(std::initializer_list<double> numbers);

}  // namespace FrameworkUtility::detail
