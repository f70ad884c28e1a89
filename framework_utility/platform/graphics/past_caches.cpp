// The one file that names instructions: no C++ that both compilers know makes them store past the
// caches.

#include <framework_utility/platform/graphics/past_caches.h>

#include <algorithm>
#include <array>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace FrameworkUtility::detail {

#if defined(__SSE2__)

namespace {

/// Writes `bytes` bytes at `to`, `from(i)` being where those from byte i on stand: whole vectors
/// to memory, what lies before the first aligned place and behind the last one as usual.
template <class From>
void stream(std::uint8_t* to, std::size_t bytes, const From& from) {
  constexpr std::size_t unit = sizeof(__m128i);
  const std::size_t unaligned = (unit - reinterpret_cast<std::uintptr_t>(to) % unit) % unit;
  std::size_t at = std::min(unaligned, bytes);
  std::memcpy(to, from(0), at);
  for (; at + unit <= bytes; at += unit) {
    _mm_stream_si128(reinterpret_cast<__m128i*>(to + at),
                     _mm_loadu_si128(reinterpret_cast<const __m128i*>(from(at))));
  }
  std::memcpy(to + at, from(at), bytes - at);
}

}  // namespace

void PastCaches::store(const std::uint8_t* from, std::uint8_t* to, std::size_t bytes) {
  stream(to, bytes, [from](std::size_t at) { return from + at; });
}

void PastCaches::fill(std::uint32_t word, std::uint8_t* to, std::size_t pixels) {
  std::array<std::uint8_t, sizeof(__m128i) + 4> pattern;
  for (std::size_t i = 0; i < pattern.size(); i += 4) std::memcpy(&pattern[i], &word, 4);
  stream(to, 4 * pixels, [&pattern](std::size_t at) { return pattern.data() + at % 4; });
}

PastCaches::~PastCaches() { _mm_sfence(); }

#else

void PastCaches::store(const std::uint8_t* from, std::uint8_t* to, std::size_t bytes) {
  std::memcpy(to, from, bytes);
}

void PastCaches::fill(std::uint32_t word, std::uint8_t* to, std::size_t pixels) {
  for (std::size_t i = 0; i < pixels; ++i) std::memcpy(to + 4 * i, &word, 4);
}

PastCaches::~PastCaches() = default;

#endif

}  // namespace FrameworkUtility::detail
