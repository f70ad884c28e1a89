#pragma once

#include <cstdint>

namespace FrameworkUtility {

/// What decoding one image may take. Numbers below these bind, numbers above them change nothing.
struct CGImageSourceLimits {
  std::uint64_t mostPixels = std::uint64_t{1} << 29;
  /// In bytes at once: the pixels, the rows on their way, and what the codec keeps. That is little
  /// but for a progressive JPEG, all of whose coefficients it needs (2 bytes a sample), and for the
  /// thumbnail of an interlaced PNG, for which the picture is held whole.
  std::uint64_t mostMemory = std::uint64_t{1} << 31;
  /// Of a JPEG: each costs as much work as the whole picture, however few bytes it has. Progressive
  /// files usually have 10, with four colours 18.
  std::uint64_t mostScans = 50;
};

}  // namespace FrameworkUtility
