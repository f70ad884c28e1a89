#include <tools/kvtool/console/readers.h>

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace kvtool {
namespace {

template <class T>
std::optional<T> numberIn(std::string_view text) {
  T value{};
  const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (problem != std::errc() || end != text.data() + text.size()) return std::nullopt;
  if (!std::isfinite(static_cast<double>(value))) return std::nullopt;
  return value;
}

template <class T>
Reader name(T& target, std::string shape) {
  return {std::move(shape), "a name", [&target](const std::string& given) {
            target = given;
            return !given.empty();
          }};
}

template <class T>
Reader whole(T& target, int least, int most, std::string shape) {
  return {std::move(shape), fmt::format("{} to {}", least, most),
          [&target, least, most](const std::string& given) {
            const auto value = numberIn<int>(given);
            if (!value || *value < least || *value > most) return false;
            target = *value;
            return true;
          }};
}

/// "low, medium or high"
std::string listOf(const std::vector<std::string>& names) {
  std::string list = names.front();
  for (std::size_t i = 1; i < names.size(); ++i) {
    list += (i + 1 == names.size() ? " or " : ", ") + names[i];
  }
  return list;
}

}  // namespace

std::vector<double> numbersIn(std::string_view text, std::size_t least, std::size_t most) {
  std::vector<double> numbers;
  for (bool more = true; more;) {
    const std::size_t comma = text.find(',');
    const std::optional<double> number = numberIn<double>(text.substr(0, comma));
    if (!number || numbers.size() == most) return {};
    numbers.push_back(*number);
    more = comma != std::string_view::npos;
    if (more) text.remove_prefix(comma + 1);
  }
  return numbers.size() < least ? std::vector<double>() : numbers;
}

Reader flag(bool& target) {
  return {"", "", [&target](const std::string&) { return target = true; }};
}

Reader fileNames(std::vector<std::string>& target) {
  return {"FILES", "",
          [&target](const std::string& given) {
            target.push_back(given);
            return true;
          },
          true};
}

Reader anyText(std::optional<std::string>& target, std::string shape) {
  return {std::move(shape), "a text", [&target](const std::string& given) {
            target = given;
            return true;
          }};
}

Reader anyName(std::string& target, std::string shape) { return name(target, std::move(shape)); }

Reader anyName(std::optional<std::string>& target, std::string shape) {
  return name(target, std::move(shape));
}

Reader oneOf(std::string& target, std::vector<std::string> names) {
  std::string shape = names.front();
  for (std::size_t i = 1; i < names.size(); ++i) shape += "|" + names[i];
  std::string expected = listOf(names);
  return {std::move(shape), std::move(expected),
          [&target, names = std::move(names)](const std::string& given) {
            target = given;
            return std::find(names.begin(), names.end(), given) != names.end();
          }};
}

Reader wholeNumber(int& target, int least, int most, std::string shape) {
  return whole(target, least, most, std::move(shape));
}

Reader wholeNumber(std::optional<int>& target, int least, int most, std::string shape) {
  return whole(target, least, most, std::move(shape));
}

Reader amount(std::uint64_t& target, std::vector<std::pair<std::string, std::uint64_t>> units,
              std::string shape) {
  std::vector<std::string> names;
  for (const auto& [unit, factor] : units) {
    if (!unit.empty()) names.push_back(unit);
  }
  return {
      std::move(shape), fmt::format("a number above 0, alone or with {} behind it", listOf(names)),
      [&target, units = std::move(units)](const std::string& given) {
        const std::size_t digits = std::min(given.find_first_not_of("0123456789"), given.size());
        const auto number = numberIn<std::uint64_t>(std::string_view(given).substr(0, digits));
        for (const auto& [unit, factor] : units) {
          if (!number || *number == 0 || given.substr(digits) != unit) continue;
          target = *number > UINT64_MAX / factor ? UINT64_MAX : *number * factor;
          return true;
        }
        return false;
      }};
}

Reader finiteNumber(double& target, std::string shape) {
  return {std::move(shape), "a number", [&target](const std::string& given) {
            const auto value = numberIn<double>(given);
            target = value.value_or(0);
            return value.has_value();
          }};
}

Reader fraction(std::optional<double>& target, std::string shape) {
  return {std::move(shape), "0 to 1", [&target](const std::string& given) {
            target = numberIn<double>(given);
            return target && *target >= 0 && *target <= 1;
          }};
}

Reader numberPair(std::pair<double, double>& target, double bound, std::string shape) {
  const std::string_view which = std::isfinite(bound) ? ", both above 0" : "";
  return {std::move(shape), fmt::format("like 300,200{}", which),
          [&target, bound](const std::string& given) {
            const std::vector<double> numbers = numbersIn(given, 2, 2);
            if (numbers.empty() || !(numbers[0] > bound && numbers[1] > bound)) return false;
            target = {numbers[0], numbers[1]};
            return true;
          }};
}

}  // namespace kvtool
