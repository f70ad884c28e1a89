#include <framework_utility/platform/imageio/metadata/exif/tiff_layout.h>

#include <framework_utility/platform/foundation/values/byte_writer.h>

#include <algorithm>
#include <utility>

namespace FrameworkUtility::detail {
namespace {

bool isInline(const TiffRecord& record) { return record.value.size() <= tiffInlineSize; }

/// The bytes of the value that are not the record's own.
ByteRange placeOf(const TiffEntry& entry) {
  if (entry.value.size() <= tiffInlineSize) return {};
  return {entry.offset, entry.offset + entry.value.size()};
}

class Layout {
 public:
  Layout(TiffPlan& plan, TiffPlacement placement)
      : plan_(plan), inPlace_(placement == TiffPlacement::inPlace) {}

  std::vector<std::byte> bytes() {
    claimDirectories();
    findChanges();
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

  /// The header and the directories that have not grown. Those of a sound block do not overlap.
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

  /// A damaged block's values may lie in its header and directories; they can stay there where
  /// these are to be as they were.
  void findChanges() {
    const auto compare = [&](std::uint64_t at, std::span<const std::byte> stored) {
      const ByteRange place{at, at + stored.size()};
      if (place.end > plan_.source.size() ||
          !std::equal(stored.begin(), stored.end(),
                      plan_.source.begin() + static_cast<std::ptrdiff_t>(at))) {
        changes_.push_back(place);
      }
    };
    writeHeader(compare);
    for (std::size_t i = 0; i < plan_.directories.size(); ++i) {
      if (isPlaced_[i]) writeDirectory(plan_.directories[i], compare);
    }
    changes_ = united(std::move(changes_));
  }

  bool isChanged(const ByteRange& range) const {
    const auto first =
        std::partition_point(changes_.begin(), changes_.end(),
                             [&](const ByteRange& change) { return change.end <= range.begin; });
    return first != changes_.end() && first->begin < range.end;
  }

  bool mustMove(const TiffRecord& record) const {
    return record.unchanged && !isInline(record) &&
           (!(inPlace_ || record.pinned) || isChanged(record.place));
  }

  /// A sound block's values do not share bytes, so that what moves is never more than the source.
  /// Records that do cannot make a block grow without bound: the longest go, and those of the same
  /// tag behind them, which do not count.
  void claimUnchangedValues() {
    std::vector<std::uint64_t> sizes;
    for (const TiffDirectory& directory : plan_.directories) {
      for (const TiffRecord& record : directory.records) {
        if (mustMove(record)) sizes.push_back(record.value.size());
      }
    }
    std::sort(sizes.begin(), sizes.end());
    std::uint64_t moved = 0;
    std::size_t count = 0;
    while (count < sizes.size() && (moved += sizes[count]) <= plan_.source.size()) ++count;
    for (TiffDirectory& directory : plan_.directories) {
      std::optional<std::uint16_t> gone;
      std::erase_if(directory.records, [&](TiffRecord& record) {
        if (record.tag == gone) return true;
        if (isInline(record) || !record.unchanged) return false;
        if (!mustMove(record)) {
          kept_.push_back(record.place);
          return false;
        }
        record.unchanged = false;
        record.place = {};  // Not its own alone.
        if (count == sizes.size() || record.value.size() < sizes[count]) return false;
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
        for (const TiffRecord& record : plan_.directories[i].records) {
          if (!record.unchanged) dropped_.push_back(record.place);
        }
      }
    } else {
      dropped_ = {{0, kept_.back().end}};
    }
    bytes_.resize(std::max<std::size_t>(bytes_.size(), kept_.back().end));
    std::vector<ByteRange> free = without(united(std::move(dropped_)), kept_);
    for (const ByteRange& range : free) {
      std::fill(bytes_.begin() + static_cast<std::ptrdiff_t>(range.begin),
                bytes_.begin() + static_cast<std::ptrdiff_t>(range.end), std::byte{0});
    }
    return FreeSpace(std::move(free), bytes_.size());
  }

  /// What has a place of its own comes first, lest something else takes it.
  void placeRest(FreeSpace& space) {
    for (std::size_t i = 0; i < plan_.directories.size(); ++i) {
      TiffDirectory& directory = plan_.directories[i];
      if (inPlace_ && !isPlaced_[i] && !directory.place.empty() &&
          space.takeAt(directory.place.begin, sizeOf(directory))) {
        isPlaced_[i] = true;
      }
    }
    for (TiffDirectory& directory : plan_.directories) {
      for (TiffRecord& record : directory.records) {
        if (!record.unchanged && !isInline(record) &&
            !(inPlace_ && record.value.size() <= record.place.size() &&
              space.takeAt(record.place.begin, record.value.size()))) {
          record.place = {};
        }
      }
    }
    for (std::size_t i = 0; i < plan_.directories.size(); ++i) {
      if (!isPlaced_[i]) {
        plan_.directories[i].place.begin = space.take(sizeOf(plan_.directories[i]));
      }
    }
    isPlaced_.assign(isPlaced_.size(), true);
    for (TiffDirectory& directory : plan_.directories) {
      for (TiffRecord& record : directory.records) {
        if (!isInline(record) && record.place.empty()) {
          record.place.begin = space.take(record.value.size());
        }
      }
    }
    isLaidOut_ = true;
  }

  void store() {
    const auto write = [&](std::uint64_t at, std::span<const std::byte> stored) {
      std::copy(stored.begin(), stored.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(at));
    };
    writeHeader(write);
    for (const TiffDirectory& directory : plan_.directories) {
      writeDirectory(directory, write);
      for (const TiffRecord& record : directory.records) {
        if (!isInline(record)) write(record.place.begin, record.value);
      }
    }
  }

  /// Each hands out what stands where, as far as it has been decided.
  template <class Write>
  void writeHeader(Write write) const {
    const std::span<const std::byte> header = plan_.header;
    if (plan_.hasFixedDirectory) {
      write(0, header);
    } else {
      write(0,
            ByteWriter(plan_.order).put(header.first(header.size() - 4)).putNumber(offsetOf(0), 4));
    }
  }
  template <class Write>
  void writeDirectory(const TiffDirectory& directory, Write write) const {
    std::uint64_t at = directory.place.begin;
    ByteWriter bytes(plan_.order);
    const auto writeBytes = [&] {
      write(at, bytes);
      at += bytes.takeBytes().size();
    };
    bytes.putNumber(directory.records.size(), 2);
    writeBytes();
    for (const TiffRecord& record : directory.records) {
      bytes.put<std::uint16_t>(record.tag)
          .put<std::uint16_t>(static_cast<std::uint16_t>(record.type))
          .put<std::uint32_t>(record.count);
      if (isInline(record) && !record.child) {
        bytes.put(record.value).putNumber(0, tiffInlineSize - record.value.size());
      } else {
        bytes.putNumber(offsetIn(record), 4);
      }
      writeBytes();
    }
    bytes.put<std::uint32_t>(directory.next);
    writeBytes();
  }
  /// No block has this offset; it stands for one that is not decided yet.
  static constexpr std::uint64_t undecided = UINT32_MAX;
  std::uint64_t offsetOf(std::size_t directory) const {
    return isPlaced_[directory] ? plan_.directories[directory].place.begin : undecided;
  }
  std::uint64_t offsetIn(const TiffRecord& record) const {
    if (record.child) return offsetOf(*record.child);
    const bool stays = record.unchanged && inPlace_ && !isClaimed(record.place);
    return isLaidOut_ || stays ? record.place.begin : undecided;
  }

  TiffPlan& plan_;
  const bool inPlace_;
  std::vector<ByteRange> claims_;   // By the header and by directories.
  std::vector<ByteRange> changes_;  // Of these, what differs from the source.
  std::vector<ByteRange> kept_;     // Claims, and values that stay.
  std::vector<ByteRange> dropped_;  // All that is not needed where it is.
  std::vector<bool> isPlaced_;      // Of each directory.
  bool isLaidOut_ = false;
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
