#pragma once

#include <cstdint>
#include <string>

namespace FrameworkUtility {

/// Uniform over all 32 bits, from the system's generator, which nobody seeds. Thread: any.
/// Platform: arc4random
std::uint32_t randomUnsignedInteger();

/// Uniform in [0, 1), in steps of 2^-53, from the same generator. Thread: any.
double randomUnitReal();

/// A new random identifier: 8-4-4-4-12 hexadecimal digits, upper case. Thread: any.
/// Selector: UUIDString
std::string newUUIDString();

}  // namespace FrameworkUtility
