#include <framework_utility/platform/imageio/exif/tiff_layout.h>

#include <algorithm>
#include <utility>

namespace FrameworkUtility::detail {
namespace {

bool isInline(const TiffRecord& record) { return record.value.size() <= tiffInlineSize; }

// The bytes of the value that are not the record's own.
ByteRange placeOf(const TiffEntry& entry) {
  if (entry.value.size() <= tiffInlineSize) return {};
  return {entry.offset, entry.offset + entry.value.size()};
}

// Sorted, and each with a gap to the next.
std::vector<ByteRange> united(std::vector<ByteRange> ranges) {
  std::erase_if(ranges, [](const ByteRange& range) { return range.begin >= range.end; });
  std::sort(ranges.begin(), ranges.end(),
            [](const ByteRange& a, const ByteRange& b) { return a.begin < b.begin; });
  std::vector<ByteRange> result;
  for (const ByteRange& range : ranges)
    if (!result.empty() && range.begin <= result.back().end)
      result.back().end = std::max(result.back().end, range.end);
    else
      result.push_back(range);
  return result;
}

// What `from` covers and `what` does not.
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

// The bytes that may be written, those behind the end included.
class FreeSpace {
 public:
  FreeSpace(std::vector<ByteRange> ranges, std::uint64_t end)
      : ranges_(std::move(ranges)), end_(end) {
    if (!ranges_.empty() && ranges_.back().end >= end_) {
      end_ = ranges_.back().begin;
      ranges_.pop_back();
    }
  }

  std::uint64_t end() const { return end_; }

  bool takeAt(std::uint64_t begin, std::uint64_t size) {
    if (begin >= end_) {
      if (begin > end_) ranges_.push_back({end_, begin});
      end_ = begin + size;
      return true;
    }
    for (auto range = ranges_.begin(); range != ranges_.end(); ++range) {
      if (begin < range->begin || begin + size > range->end) continue;
      cut(range, begin, size);
      return true;
    }
    return false;
  }

  // Values begin at even offsets, as TIFF asks.
  std::uint64_t take(std::uint64_t size) {
    for (auto range = ranges_.begin(); range != ranges_.end(); ++range) {
      const std::uint64_t begin = range->begin + range->begin % 2;
      if (begin + size > range->end) continue;
      cut(range, begin, size);
      return begin;
    }
    const std::uint64_t begin = end_ + end_ % 2;
    end_ = begin + size;
    return begin;
  }

 private:
  void cut(std::vector<ByteRange>::iterator range, std::uint64_t begin, std::uint64_t size) {
    const ByteRange behind{begin + size, range->end};
    range->end = begin;
    if (!behind.empty()) range = ranges_.insert(range + 1, behind) - 1;
    if (range->empty()) ranges_.erase(range);
  }

  std::vector<ByteRange> ranges_;
  std::uint64_t end_;
};

class Layout {
 public:
  Layout(TiffPlan& plan, TiffPlacement placement)
      : plan_(plan), inPlace_(placement == TiffPlacement::inPlace) {}

  std::vector<std::byte> bytes() {
    claimDirectories();
    claimUnchangedValues();
    FreeSpace space = freeSpace();
    placeRest(space);
    bytes_.resize(static_cast<std::size_t>(space.end()));
    store();
    return std::move(bytes_);
  }

 private:
  static std::uint64_t sizeOf(const TiffDirectory& directory) {
    return tiffDirectorySize(directory.records.size());
  }

  bool isClaimed(const ByteRange& range) const {
    return std::any_of(claims_.begin(), claims_.end(),
                       [&](const ByteRange& claim) { return claim.overlaps(range); });
  }

  // The header and the directories that have not grown. Those of a sound block do not overlap.
  void claimDirectories() {
    claims_.push_back({0, plan_.header.size()});
    for (std::size_t i = 0; i < plan_.directories.size(); ++i) {
      TiffDirectory& directory = plan_.directories[i];
      const bool isFixed = i == 0 && plan_.hasFixedDirectory;
      const ByteRange old =
          isFixed ? ByteRange{plan_.header.size(), plan_.header.size()} : directory.place;
      const ByteRange place{old.begin, old.begin + sizeOf(directory)};
      const bool stays = inPlace_ && !old.empty() && place.end <= old.end && !isClaimed(place);
      isPlaced_.push_back(isFixed || stays);
      if (!isPlaced_.back()) continue;
      dropped_.push_back(directory.place);
      directory.place = place;
      claims_.push_back(place);
    }
  }

  // An unchanged value moves only where a directory needs its bytes. A sound block's values do not
  // share bytes, so that what moves is never more than the source. Records that do cannot make a
  // block grow without bound: they go, and those of the same tag behind them, which do not count.
  void claimUnchangedValues() {
    std::uint64_t moved = 0;
    for (TiffDirectory& directory : plan_.directories) {
      std::optional<std::uint16_t> gone;
      std::erase_if(directory.records, [&](TiffRecord& record) {
        if (record.tag == gone) return true;
        if (isInline(record) || !record.unchanged) return false;
        if ((inPlace_ || record.pinned) && !isClaimed(record.place)) {
          kept_.push_back(record.place);
          return false;
        }
        record.unchanged = false;
        moved += record.value.size();
        if (moved <= plan_.source.size()) return false;
        gone = record.tag;
        return true;
      });
    }
  }

  FreeSpace freeSpace() {
    kept_.insert(kept_.end(), claims_.begin(), claims_.end());
    kept_ = united(std::move(kept_));
    if (inPlace_) {
      bytes_.assign(plan_.source.begin(), plan_.source.end());
      dropped_.insert(dropped_.end(), plan_.dropped.begin(), plan_.dropped.end());
      for (std::size_t i = 0; i < plan_.directories.size(); ++i) {
        if (!isPlaced_[i]) dropped_.push_back(plan_.directories[i].place);
        for (const TiffRecord& record : plan_.directories[i].records)
          if (!record.unchanged) dropped_.push_back(record.place);
      }
    } else {
      dropped_ = {{0, kept_.back().end}};
    }
    bytes_.resize(std::max<std::size_t>(bytes_.size(), kept_.back().end));
    std::vector<ByteRange> free = without(united(std::move(dropped_)), kept_);
    for (const ByteRange& range : free)
      std::fill(bytes_.begin() + static_cast<std::ptrdiff_t>(range.begin),
                bytes_.begin() + static_cast<std::ptrdiff_t>(range.end), std::byte{0});
    return FreeSpace(std::move(free), bytes_.size());
  }

  // What has a place of its own comes first, lest something else takes it.
  void placeRest(FreeSpace& space) {
    for (std::size_t i = 0; i < plan_.directories.size(); ++i) {
      TiffDirectory& directory = plan_.directories[i];
      if (inPlace_ && !isPlaced_[i] && !directory.place.empty() &&
          space.takeAt(directory.place.begin, sizeOf(directory)))
        isPlaced_[i] = true;
    }
    for (TiffDirectory& directory : plan_.directories)
      for (TiffRecord& record : directory.records)
        if (!record.unchanged && !isInline(record) &&
            !(inPlace_ && record.value.size() <= record.place.size() &&
              space.takeAt(record.place.begin, record.value.size())))
          record.place = {};
    for (std::size_t i = 0; i < plan_.directories.size(); ++i)
      if (!isPlaced_[i])
        plan_.directories[i].place.begin = space.take(sizeOf(plan_.directories[i]));
    for (TiffDirectory& directory : plan_.directories)
      for (TiffRecord& record : directory.records)
        if (!isInline(record) && record.place.empty())
          record.place.begin = space.take(record.value.size());
  }

  void store() {
    std::copy(plan_.header.begin(), plan_.header.end(), bytes_.begin());
    if (!plan_.hasFixedDirectory)
      store(plan_.header.size() - 4, plan_.directories.front().place.begin, 4);
    for (const TiffDirectory& directory : plan_.directories) {
      std::uint64_t at = directory.place.begin;
      store(at, directory.records.size(), 2);
      at += 2;
      for (const TiffRecord& record : directory.records) {
        store(at, record.tag, 2);
        store(at + 2, static_cast<std::uint16_t>(record.type), 2);
        store(at + 4, record.count, 4);
        store(at + 8, 0, 4);
        if (record.child)
          store(at + 8, plan_.directories[*record.child].place.begin, 4);
        else if (!isInline(record))
          store(at + 8, record.place.begin, 4);
        std::copy(record.value.begin(), record.value.end(),
                  bytes_.begin() +
                      static_cast<std::ptrdiff_t>(isInline(record) ? at + 8 : record.place.begin));
        at += tiffRecordSize;
      }
      store(at, directory.next, 4);
    }
  }
  void store(std::uint64_t at, std::uint64_t number, std::size_t size) {
    storeTiffInteger(bytes_.data() + at, number, size, plan_.order);
  }

  TiffPlan& plan_;
  const bool inPlace_;
  std::vector<ByteRange> claims_;   // By the header and by directories.
  std::vector<ByteRange> kept_;     // Claims, and values that stay.
  std::vector<ByteRange> dropped_;  // All that is not needed where it is.
  std::vector<bool> isPlaced_;      // Of each directory.
  std::vector<std::byte> bytes_;
};

}  // namespace

void TiffDirectory::keep(const TiffEntry& entry) {
  const ByteRange where = placeOf(entry);
  records.push_back(
      {.tag = entry.tag,
       .type = entry.type,
       .count = entry.count,
       .value = Data::withBytesNoCopy(where.empty() ? entry.field : entry.value, nullptr),
       .place = where,
       .unchanged = true});
}

void TiffDirectory::replace(const TiffEntry& entry, TiffValue value) {
  add(entry.tag, std::move(value));
  records.back().place = placeOf(entry);
}

void TiffDirectory::add(std::uint16_t tag, TiffValue value) {
  records.push_back({.tag = tag,
                     .type = value.type,
                     .count = value.count,
                     .value = Data(std::move(value.bytes))});
}

void TiffDirectory::sortRecords() {
  std::stable_sort(records.begin(), records.end(),
                   [](const TiffRecord& a, const TiffRecord& b) { return a.tag < b.tag; });
}

void TiffPlan::drop(const TiffEntry& entry) { dropped.push_back(placeOf(entry)); }

std::vector<std::byte> layOutTiff(TiffPlan plan, TiffPlacement placement) {
  return Layout(plan, placement).bytes();
}

}  // namespace FrameworkUtility::detail
