#pragma once

#include <framework_utility/platform/graphics/pixel_buffer.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace FrameworkUtility::detail {

struct PixelSize {
  std::size_t width = 0;
  std::size_t height = 0;

  bool operator==(const PixelSize&) const = default;
};

/// `size` reduced so that neither side exceeds `maxPixelSize` (taken as 1 when it is 0): the longer
/// side is just that, the shorter one rounded to nearest and never 0. A smaller size stays.
PixelSize fittedSize(PixelSize size, std::size_t maxPixelSize);

/// Reduces a picture while its rows arrive, so that it is never held whole: each pixel of the
/// target is the average of the area that it covers, partly covered pixels counted by their parts.
/// Rows are 1, 3 or 4 components of 8 bits a pixel; alpha must be premultiplied.
///
///     std::optional<AreaScaler> scaler = AreaScaler::create(source, target, 4);
///     for (each source row)
///       if (scaler->push(row, targetRow)) targetRow += target.width * 4;
class AreaScaler {
 public:
  /// Absent when `target` is larger than `source` in a side or has an empty one, or memory is
  /// short.
  static std::optional<AreaScaler> create(PixelSize source, PixelSize target,
                                          std::size_t components);

  /// How many bytes a scaler of these sizes takes.
  static std::uint64_t memory(PixelSize source, PixelSize target, std::size_t components);

  /// Takes the next row, top first. True when it completes one of the target, which is then in
  /// `targetRow`; a row completes one at most.
  bool push(const std::uint8_t* sourceRow, std::uint8_t* targetRow);

 private:
  /// The columns of the source that one of the target covers, and by how much the outer ones.
  struct Span {
    std::size_t first = 0;
    std::size_t last = 0;
    float firstWeight = 1;
    float lastWeight = 0;  // 0 where first and last are the same
  };

  AreaScaler(PixelSize source, PixelSize target, std::size_t components, PixelBuffer sums,
             PixelBuffer wholeRows, std::vector<Span> spans);

  void addWholeRows();
  template <std::size_t components>
  void averageColumns(std::uint8_t* targetRow) const;

  PixelSize source_;
  PixelSize target_;
  std::size_t components_;
  std::size_t rowLength_;       // in components
  std::uint64_t end_ = 0;       // of the rows so far, a source row being target_.height units high
  std::uint64_t boundary_ = 0;  // where the target row in the making ends, in the same units
  PixelBuffer sums_;            // float: what the target row has of each component so far
  PixelBuffer wholeRows_;       // uint16: the sum of whole rows that `sums_` does not hold yet
  std::size_t wholeRowCount_ = 0;
  std::vector<Span> spans_;
};

}  // namespace FrameworkUtility::detail
