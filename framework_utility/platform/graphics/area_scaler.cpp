#include <framework_utility/platform/graphics/area_scaler.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <utility>

namespace FrameworkUtility::detail {

namespace {

/// As many rows of 255 as 16 bits hold.
constexpr std::size_t maximumWholeRows = 257;

float* floats(PixelBuffer& buffer) { return reinterpret_cast<float*>(buffer.data()); }
std::uint16_t* words(PixelBuffer& buffer) {
  return reinterpret_cast<std::uint16_t*>(buffer.data());
}

}  // namespace

PixelSize fittedSize(PixelSize size, std::size_t maxPixelSize) {
  const std::size_t bound = std::max<std::size_t>(maxPixelSize, 1);
  const std::size_t longer = std::max(size.width, size.height);
  if (longer <= bound) return size;
  const auto fitted = [&](std::size_t side) {
    const double exact =
        static_cast<double>(side) * static_cast<double>(bound) / static_cast<double>(longer);
    return std::max<std::size_t>(static_cast<std::size_t>(std::llround(exact)), 1);
  };
  return {fitted(size.width), fitted(size.height)};
}

AreaScaler::AreaScaler(PixelSize source, PixelSize target, std::size_t components, PixelBuffer sums,
                       PixelBuffer wholeRows, std::vector<Span> spans)
    : source_(source),
      target_(target),
      components_(components),
      rowLength_(source.width * components),
      boundary_(source.height),
      sums_(std::move(sums)),
      wholeRows_(std::move(wholeRows)),
      spans_(std::move(spans)) {
  std::fill_n(floats(sums_), rowLength_, 0.0F);
  std::fill_n(words(wholeRows_), rowLength_, std::uint16_t{0});
}

std::optional<AreaScaler> AreaScaler::create(PixelSize source, PixelSize target,
                                             std::size_t components) {
  constexpr std::size_t longest = std::size_t{1} << 31;  // so that products fit 64 bits
  if (target.width == 0 || target.height == 0 || target.width > source.width ||
      target.height > source.height || source.width > longest || source.height > longest) {
    return std::nullopt;
  }
  const std::size_t length = source.width * components;
  std::optional<PixelBuffer> sums = PixelBuffer::allocate(length, sizeof(float));
  std::optional<PixelBuffer> wholeRows = PixelBuffer::allocate(length, sizeof(std::uint16_t));
  if (!sums || !wholeRows) return std::nullopt;
  try {
    std::vector<Span> spans(target.width);
    // A column of the source is target.width units wide, one of the target source.width.
    const auto unit = static_cast<float>(target.width);
    for (std::size_t x = 0; x < target.width; ++x) {
      const std::size_t begin = x * source.width;
      const std::size_t end = begin + source.width;
      Span& span = spans[x];
      span.first = begin / target.width;
      span.last = (end - 1) / target.width;
      if (span.last != span.first) {
        span.firstWeight = static_cast<float>((span.first + 1) * target.width - begin) / unit;
        span.lastWeight = static_cast<float>(end - span.last * target.width) / unit;
      }
    }
    return AreaScaler(source, target, components, std::move(*sums), std::move(*wholeRows),
                      std::move(spans));
  } catch (const std::bad_alloc&) {
    return std::nullopt;
  }
}

std::uint64_t AreaScaler::memory(PixelSize source, PixelSize target, std::size_t components) {
  return source.width * components * (sizeof(float) + sizeof(std::uint16_t)) +
         target.width * sizeof(Span);
}

bool AreaScaler::push(const std::uint8_t* sourceRow, std::uint8_t* targetRow) {
  end_ += target_.height;
  if (end_ < boundary_) {
    // Most rows lie in one target row as a whole; adding small integers is the cheapest there is.
    std::uint16_t* __restrict whole = words(wholeRows_);
    const std::uint8_t* __restrict row = sourceRow;
    for (std::size_t i = 0; i < rowLength_; ++i) {
      whole[i] = static_cast<std::uint16_t>(whole[i] + row[i]);
    }
    if (++wholeRowCount_ == maximumWholeRows) addWholeRows();
    return false;
  }

  const float after = static_cast<float>(end_ - boundary_) / static_cast<float>(target_.height);
  const float before = 1 - after;
  float* __restrict sums = floats(sums_);
  const std::uint8_t* __restrict row = sourceRow;
  if (wholeRowCount_ > 0) addWholeRows();
  for (std::size_t i = 0; i < rowLength_; ++i) sums[i] += before * static_cast<float>(row[i]);
  switch (components_) {
    case 1:
      averageColumns<1>(targetRow);
      break;
    case 3:
      averageColumns<3>(targetRow);
      break;
    default:
      averageColumns<4>(targetRow);
      break;
  }
  for (std::size_t i = 0; i < rowLength_; ++i) sums[i] = after * static_cast<float>(row[i]);
  boundary_ += source_.height;
  return true;
}

void AreaScaler::addWholeRows() {
  float* __restrict sums = floats(sums_);
  std::uint16_t* __restrict whole = words(wholeRows_);
  for (std::size_t i = 0; i < rowLength_; ++i) {
    sums[i] += static_cast<float>(whole[i]);
    whole[i] = 0;
  }
  wholeRowCount_ = 0;
}

template <std::size_t components>
void AreaScaler::averageColumns(std::uint8_t* targetRow) const {
  const auto area = static_cast<double>(source_.width) / static_cast<double>(target_.width) *
                    static_cast<double>(source_.height) / static_cast<double>(target_.height);
  const auto scale = static_cast<float>(1 / area);
  const auto* sums = reinterpret_cast<const float*>(sums_.data());
  for (const Span& span : spans_) {
    const float* column = sums + span.first * components;
    const float* const last = sums + span.last * components;
    std::array<float, components> sum;
    for (std::size_t c = 0; c < components; ++c) sum[c] = column[c] * span.firstWeight;
    for (column += components; column < last; column += components) {
      for (std::size_t c = 0; c < components; ++c) sum[c] += column[c];
    }
    for (std::size_t c = 0; c < components; ++c) {
      sum[c] = (sum[c] + last[c] * span.lastWeight) * scale + 0.5F;
    }
    for (std::size_t c = 0; c < components; ++c) {
      *targetRow++ = static_cast<std::uint8_t>(static_cast<std::int32_t>(sum[c]));
    }
  }
}

}  // namespace FrameworkUtility::detail
