#include <framework_utility/platform/graphics/pixel_buffer.h>

#include <cstdlib>
#include <span>
#include <utility>

#include <sys/mman.h>

namespace FrameworkUtility::detail {

namespace {

constexpr std::size_t cacheLine = 64;
constexpr std::size_t hugePage = std::size_t{2} << 20;

}  // namespace

void PixelBuffer::Free::operator()(std::uint8_t* bytes) const { std::free(bytes); }

std::optional<PixelBuffer> PixelBuffer::allocate(std::size_t rows, std::size_t bytesPerRow) {
  if (rows == 0 || bytesPerRow == 0 || rows > maximumPixelBytes / bytesPerRow) return std::nullopt;
  // With 4 kB pages the first write to each page costs more than all other work on the pixels.
  const bool large = rows * bytesPerRow >= 2 * hugePage;
  const std::size_t alignment = large ? hugePage : cacheLine;
  const std::size_t size = (rows * bytesPerRow + alignment - 1) / alignment * alignment;
  PixelBuffer buffer;
  buffer.bytes_.reset(static_cast<std::uint8_t*>(std::aligned_alloc(alignment, size)));
  if (!buffer.bytes_) return std::nullopt;
  if (large) {
    madvise(buffer.bytes_.get(), size, MADV_HUGEPAGE);  // only a wish
  }
  buffer.rows_ = rows;
  buffer.bytesPerRow_ = bytesPerRow;
  return buffer;
}

Data PixelBuffer::share() && {
  const std::span<const std::byte> bytes(reinterpret_cast<const std::byte*>(data()), size());
  return Data::withBytesNoCopy(bytes, std::shared_ptr<const std::uint8_t[]>(std::move(bytes_)));
}

}  // namespace FrameworkUtility::detail
