#include <framework_utility/plane/number_list.h>

#include <array>
#include <charconv>

namespace FrameworkUtility::detail {

std::string numberList(std::initializer_list<double> numbers) {
  std::string text;
  std::array<char, 32> digits;
  for (const double number : numbers) {
    if (!text.empty()) text += ", ";
    text.append(digits.data(),
                std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
  }
  return text;
}

}  // namespace FrameworkUtility::detail
