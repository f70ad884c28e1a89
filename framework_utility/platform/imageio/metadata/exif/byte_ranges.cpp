#include <framework_utility/platform/imageio/metadata/exif/byte_ranges.h>

#include <algorithm>

namespace FrameworkUtility::detail {

std::vector<ByteRange> united(std::vector<ByteRange> ranges) {
  std::erase_if(ranges, [](const ByteRange& range) { return range.begin >= range.end; });
  std::sort(ranges.begin(), ranges.end(),
            [](const ByteRange& a, const ByteRange& b) { return a.begin < b.begin; });
  std::vector<ByteRange> result;
  for (const ByteRange& range : ranges) {
    if (!result.empty() && range.begin <= result.back().end) {
      result.back().end = std::max(result.back().end, range.end);
    } else {
      result.push_back(range);
    }
  }
  return result;
}

std::vector<ByteRange> without(const std::vector<ByteRange>& from,
                               const std::vector<ByteRange>& what) {
  std::vector<ByteRange> result;
  auto hole = what.begin();
  for (ByteRange range : from) {
    while (hole != what.end() && hole->end <= range.begin) ++hole;
    for (auto h = hole; h != what.end() && h->begin < range.end; ++h) {
      if (range.begin < h->begin) result.push_back({range.begin, h->begin});
      range.begin = std::min(h->end, range.end);
    }
    if (!range.empty()) result.push_back(range);
  }
  return result;
}

FreeSpace::FreeSpace(std::vector<ByteRange> ranges, std::uint64_t end) : end_(end) {
  if (!ranges.empty() && ranges.back().end >= end_) {
    end_ = ranges.back().begin;
    ranges.pop_back();
  }
  for (const ByteRange& range : ranges) insert(range);
}

bool FreeSpace::takeAt(std::uint64_t begin, std::uint64_t size) {
  if (begin >= end_) {
    if (begin > end_) insert({end_, begin});
    end_ = begin + size;
    return true;
  }
  auto range = ends_.upper_bound(begin);
  if (range == ends_.begin() || begin + size > (--range)->second) return false;
  cut({range->first, range->second}, begin, size);
  return true;
}

std::uint64_t FreeSpace::take(std::uint64_t size) {
  // The tightest may lack the byte before an even offset; one that has a byte more does not.
  for (std::uint64_t wanted : {size, size + 1}) {
    const auto found = sizes_.lower_bound({wanted, 0});
    if (found == sizes_.end()) break;
    const ByteRange range{found->second, found->second + found->first};
    const std::uint64_t begin = range.begin + range.begin % 2;
    if (begin + size > range.end) continue;
    cut(range, begin, size);
    return begin;
  }
  const std::uint64_t begin = end_ + end_ % 2;
  end_ = begin + size;
  return begin;
}

void FreeSpace::insert(const ByteRange& range) {
  if (range.empty()) return;
  ends_.emplace(range.begin, range.end);
  sizes_.emplace(range.size(), range.begin);
}

void FreeSpace::cut(const ByteRange& range, std::uint64_t begin, std::uint64_t size) {
  ends_.erase(range.begin);
  sizes_.erase({range.size(), range.begin});
  insert({range.begin, begin});
  insert({begin + size, range.end});
}

}  // namespace FrameworkUtility::detail
