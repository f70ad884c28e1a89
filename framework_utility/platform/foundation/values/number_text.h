#pragma once

#include <string>

namespace FrameworkUtility {

/// The shortest text that reads back as the same double, whatever the locale. Plain with at least
/// one decimal ("10.0", "0.0001") when the absolute value lies in 1e-4 ... 2^53, else one digit
/// before the point and a signed exponent of at least two digits ("1e-05", "1.25e+17"). Zeros are
/// "0.0" and "-0.0"; the rest is "inf", "-inf" and "nan". Thread: any.
std::string textOfDouble(double value);

/// The same with a fixed number of decimals, rounded correctly: "2.0", "-0.0", "0.1" for 0.125 with
/// one. Thread: any.
std::string textOfDouble(double value, int decimals);

}  // namespace FrameworkUtility
