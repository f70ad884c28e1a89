// The texts of a colour, and which colours count as the same.

#include <framework_utility/color/color.h>

#include <framework_utility/color/color_utility.h>
#include <framework_utility/platform/foundation/values/number.h>
#include <framework_utility/platform/foundation/values/number_text.h>

#include <array>
#include <cstdio>

namespace FrameworkUtility {

namespace {

/// `component` in units of 1/`steps`, truncated towards zero. Stops the process where that is no
/// 64-bit integer.
std::int64_t truncated(double component, double steps) {
  return Number(component * steps).integerValue();
}

/// What makes a colour itself. 0.29, 0.57 and 0.58 count as a hundredth less, for their products
/// lie just below 29, 57 and 58; rounding would change the identities that apps have stored.
std::array<std::int64_t, 4> identity(const KvColor& color) {
  return {truncated(color.red, 100), truncated(color.green, 100), truncated(color.blue, 100),
          truncated(color.alpha, 100)};
}

}  // namespace

std::optional<KvColor> KvColor::withHexString(std::string_view text) {
  const std::optional<UIColor> color = colorFromHexString(text);
  if (!color) return std::nullopt;
  return KvColor(*color);
}

std::string KvColor::hexStringWithoutHash() const { return hexString().substr(1); }

std::string KvColor::hexString() const {
  const std::int64_t number =
      truncated(red, 255) << 16 | truncated(green, 255) << 8 | truncated(blue, 255);
  char text[10];
  std::snprintf(text, sizeof text, "#%06X", static_cast<unsigned>(number));
  return text;
}

std::string KvColor::identifier() const {
  const auto [r, g, b, a] = identity(*this);
  return std::to_string(r) + '.' + std::to_string(g) + '.' + std::to_string(b) + '.' +
         std::to_string(a);
}

std::string KvColor::description() const {
  return "KvColor: r " + textOfDouble(red) + ", g " + textOfDouble(green) + ", b " +
         textOfDouble(blue) + ", a " + textOfDouble(alpha);
}

bool operator==(const KvColor& a, const KvColor& b) { return identity(a) == identity(b); }

bool KvColor::isEqualDiscardAlpha(const KvColor& other) const {
  const auto hundredths = [](const KvColor& color) {
    return std::array{truncated(color.red, 100), truncated(color.green, 100),
                      truncated(color.blue, 100)};
  };
  return hundredths(*this) == hundredths(other);
}

}  // namespace FrameworkUtility

std::size_t std::hash<FrameworkUtility::KvColor>::operator()(
    const FrameworkUtility::KvColor& color) const {
  return std::hash<std::string>()(color.identifier());
}
