#include <framework_utility/platform/foundation/values/equal_keys.h>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

namespace FrameworkUtility::detail {
namespace {

/// Above this many entries sorting is faster than comparing each with each.
constexpr std::size_t fewEntries = 16;

bool hasEqualKeysAmongFew(const Dictionary& dictionary) {
  for (const auto* a = dictionary.begin(); a != dictionary.end(); ++a) {
    for (const auto* b = dictionary.begin(); b != a; ++b) {
      if (a->key == b->key) return true;
    }
  }
  return false;
}

bool hasEqual(std::vector<std::string_view>& texts) {
  std::sort(texts.begin(), texts.end());
  return std::adjacent_find(texts.begin(), texts.end()) != texts.end();
}

/// Different integers can be one as double, but never many.
bool hasEqual(std::vector<Number>& numbers) {
  std::sort(numbers.begin(), numbers.end(),
            [](Number a, Number b) { return a.doubleValue() < b.doubleValue(); });
  for (auto a = numbers.begin(); a != numbers.end(); ++a) {
    for (auto b = a + 1; b != numbers.end() && b->doubleValue() == a->doubleValue(); ++b) {
      if (*a == *b) return true;
    }
  }
  return false;
}

}  // namespace

bool hasEqualKeys(const Dictionary& dictionary) {
  if (dictionary.size() <= fewEntries) return hasEqualKeysAmongFew(dictionary);
  std::vector<std::string_view> texts;
  std::vector<Number> numbers;
  for (const auto& [key, value] : dictionary) {
    if (const auto text = key.text()) {
      texts.push_back(*text);
    } else if (!std::isnan(key.number()->doubleValue())) {  // which equals nothing
      numbers.push_back(*key.number());
    }
  }
  return hasEqual(texts) || hasEqual(numbers);
}

}  // namespace FrameworkUtility::detail
