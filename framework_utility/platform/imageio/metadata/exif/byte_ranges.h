#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace FrameworkUtility::detail {

/// begin <= i < end.
struct ByteRange {
  std::uint64_t begin = 0;
  std::uint64_t end = 0;

  std::uint64_t size() const { return end - begin; }
  bool empty() const { return begin == end; }
  bool overlaps(const ByteRange& other) const { return begin < other.end && other.begin < end; }
};

/// Sorted, and each with a gap to the next.
std::vector<ByteRange> united(std::vector<ByteRange> ranges);

/// What `from` covers and `what` does not; both are united.
std::vector<ByteRange> without(const std::vector<ByteRange>& from,
                               const std::vector<ByteRange>& what);

/// The bytes that may be written, those behind the end included. Found by their place and, the
/// tightest first, by their size.
class FreeSpace {
 public:
  FreeSpace(std::vector<ByteRange> ranges, std::uint64_t end);

  std::uint64_t end() const { return end_; }
  /// False when not all of it is free.
  bool takeAt(std::uint64_t begin, std::uint64_t size);
  /// Where it begins: at an even offset, as TIFF asks of values.
  std::uint64_t take(std::uint64_t size);

 private:
  void insert(const ByteRange& range);
  void cut(const ByteRange& range, std::uint64_t begin, std::uint64_t size);

  std::map<std::uint64_t, std::uint64_t> ends_;              // by where ranges begin
  std::set<std::pair<std::uint64_t, std::uint64_t>> sizes_;  // and where these begin
  std::uint64_t end_;
};

}  // namespace FrameworkUtility::detail
