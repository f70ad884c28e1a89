// The one file that names instructions: no C++ that both compilers know makes them store past the
// caches.

#include <framework_utility/platform/graphics/streaming_stores.h>

#include <algorithm>
#include <array>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace FrameworkUtility::detail {

#if defined(__SSE2__)

namespace {

constexpr std::size_t unit = sizeof(__m128i);

/// How many bytes lie between `to` and the next place that a vector can go to.
std::size_t bytesToUnit(const std::uint8_t* to) {
  return (unit - reinterpret_cast<std::uintptr_t>(to) % unit) % unit;
}

__m128i vectorAt(const std::uint8_t* from) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

void stream(std::uint8_t* to, __m128i vector) {
  _mm_stream_si128(reinterpret_cast<__m128i*>(to), vector);
}

}  // namespace

void StreamingStores::store(const std::uint8_t* from, std::uint8_t* to, std::size_t bytes) {
  std::size_t at = std::min(bytesToUnit(to), bytes);
  std::memcpy(to, from, at);
  for (; at + unit <= bytes; at += unit) stream(to + at, vectorAt(from + at));
  std::memcpy(to + at, from + at, bytes - at);
}

void StreamingStores::fill(std::uint32_t word, std::uint8_t* to, std::size_t pixels) {
  const std::size_t bytes = 4 * pixels;
  std::array<std::uint8_t, unit + 4> pattern;
  for (std::size_t i = 0; i < pattern.size(); i += 4) std::memcpy(&pattern[i], &word, 4);
  std::size_t at = std::min(bytesToUnit(to), bytes);
  std::memcpy(to, pattern.data(), at);
  const std::uint8_t* const turned = pattern.data() + at % 4;  // rows may begin at any byte
  for (const __m128i vector = vectorAt(turned); at + unit <= bytes; at += unit) {
    stream(to + at, vector);
  }
  std::memcpy(to + at, turned, bytes - at);
}

StreamingStores::~StreamingStores() { _mm_sfence(); }

#else

void StreamingStores::store(const std::uint8_t* from, std::uint8_t* to, std::size_t bytes) {
  std::memcpy(to, from, bytes);
}

void StreamingStores::fill(std::uint32_t word, std::uint8_t* to, std::size_t pixels) {
  for (std::size_t i = 0; i < pixels; ++i) std::memcpy(to + 4 * i, &word, 4);
}

StreamingStores::~StreamingStores() = default;

#endif

}  // namespace FrameworkUtility::detail
