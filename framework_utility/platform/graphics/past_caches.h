#pragma once

#include <cstddef>
#include <cstdint>

namespace FrameworkUtility::detail {

/// Writes rows of a picture that is too large for the caches straight to memory: a plain store
/// first reads each line that it is about to overwrite, which costs as much again.
///
///     PastCaches memory;
///     for (each row) memory.store(row, to, bytes);
class PastCaches {
 public:
  PastCaches() = default;
  PastCaches(const PastCaches&) = delete;
  PastCaches& operator=(const PastCaches&) = delete;
  ~PastCaches();  ///< What was stored is there for every thread.

  void store(const std::uint8_t* from, std::uint8_t* to, std::size_t bytes);
  /// `pixels` times the four bytes of `word`.
  void fill(std::uint32_t word, std::uint8_t* to, std::size_t pixels);
};

}  // namespace FrameworkUtility::detail
