#pragma once

#include <cstddef>
#include <cstdint>

namespace FrameworkUtility::detail {

/// Writes rows of a picture that is too large for the caches with non-temporal stores, straight to
/// memory: a plain store first reads each line that it is about to overwrite, which costs as much
/// again.
///
///     StreamingStores stores;
///     for (each row) stores.store(row, to, bytes);
class StreamingStores {
 public:
  StreamingStores() = default;
  StreamingStores(const StreamingStores&) = delete;
  StreamingStores& operator=(const StreamingStores&) = delete;
  ~StreamingStores();  ///< What was stored is there for every thread.

  void store(const std::uint8_t* from, std::uint8_t* to, std::size_t bytes);
  /// `pixels` times the four bytes of `word`.
  void fill(std::uint32_t word, std::uint8_t* to, std::size_t pixels);
};

}  // namespace FrameworkUtility::detail
