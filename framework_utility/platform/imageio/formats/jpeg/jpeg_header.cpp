#include <framework_utility/platform/imageio/formats/jpeg/jpeg_header.h>

#include <framework_utility/platform/foundation/app/uniform_type.h>
#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_extended_xmp.h>
#include <framework_utility/platform/imageio/metadata/values/metadata_budget.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace FrameworkUtility::detail {

namespace {

using Bytes = std::span<const std::byte>;

/// What is read at a time behind the beginning, which a source has at hand. Segments that are
/// stepped over lie between, so that more would be read in vain.
constexpr std::size_t beginningSize = std::size_t{16} * 1024;
constexpr std::size_t windowSize = std::size_t{4} * 1024;
/// More segments, stray bytes or metadata than these have no photograph, only an attack.
constexpr int maximumSegments = 10'000;
constexpr int maximumStrayBytes = 64 * 1024;
constexpr std::size_t maximumMetadataSize = std::size_t{32} * 1024 * 1024;
constexpr std::size_t maximumResourcesSize = std::size_t{16} * 1024 * 1024;

// Markers of ITU-T T.81, table B.1.
constexpr unsigned startOfImage = 0xD8;
constexpr unsigned endOfImage = 0xD9;
constexpr unsigned startOfScan = 0xDA;
constexpr unsigned application0 = 0xE0;
constexpr unsigned application1 = 0xE1;
constexpr unsigned application2 = 0xE2;
constexpr unsigned application5 = 0xE5;
constexpr unsigned application8 = 0xE8;
constexpr unsigned application13 = 0xED;
constexpr unsigned application14 = 0xEE;
constexpr unsigned application15 = 0xEF;
constexpr unsigned comment = 0xFE;

struct Kind {
  unsigned marker;
  std::string_view signature;
};
/// What is read elsewhere and written anew, or true of the old pixels only.
constexpr Kind notKept[] = {
    {application0, {"JFIF\0", 5}},        {application0, {"JFXX\0", 5}},
    {application1, {"Exif\0", 5}},        {application1, jpegXmpSignature},
    {application2, jpegProfileSignature}, {application2, {"MPF\0", 4}},
    {application8, {"SPIFF\0", 6}},       {application13, jpegResourcesSignature},
    {application14, {"Adobe", 5}}};

/// SOF0 to SOF15; the three numbers left out are other tables'.
constexpr bool isStartOfFrame(unsigned marker) {
  return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

/// SOF2, SOF6, SOF10 and SOF14.
constexpr bool isProgressive(unsigned marker) { return (marker & 3) == 2; }

/// TEM and the restart markers, which stand alone.
constexpr bool isBare(unsigned marker) {
  return marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7);
}

Data joined(std::span<const Data> pieces) {
  if (pieces.size() == 1) return pieces.front();
  std::size_t size = 0;
  for (const Data& piece : pieces) size += piece.size();
  std::vector<std::byte> all;
  all.reserve(size);
  for (const Data& piece : pieces) all.insert(all.end(), piece.begin(), piece.end());
  return Data(std::move(all));
}

/// The piece of the source that was read last; a new one is read when an offset lies outside.
class Window {
 public:
  explicit Window(const ByteSource& source)
      : source_(source), piece_(std::make_shared<const Data>(source.bytes(0, beginningSize))) {}

  /// Fewer bytes at the end of the source. Good until the next call.
  ByteReader at(std::uint64_t offset, std::size_t count) {
    if (offset < start_ || offset + count > start_ + piece_->size()) {
      start_ = offset;
      piece_ = std::make_shared<const Data>(source_.bytes(offset, std::max(count, windowSize)));
    }
    return ByteReader(ByteReader(*piece_).partInside(offset - start_, count));
  }

  Data shared(std::uint64_t offset, std::size_t count) {
    const Bytes bytes = at(offset, count).bytes();
    return Data::withBytesNoCopy(bytes, piece_);
  }

 private:
  const ByteSource& source_;
  std::uint64_t start_ = 0;
  std::shared_ptr<const Data> piece_;
};

class HeaderReader {
 public:
  explicit HeaderReader(const ByteSource& source) : source_(source), window_(source) {}

  ImageHeader read() {
    const CGImageSourceStatus status = walk();
    if (status != CGImageSourceStatus::complete) {
      ImageHeader failed;
      failed.status = status;
      return failed;
    }
    header_.status = status;
    header_.iccProfile = profile();
    header_.blocks.imageResources = joined(imageResources_);
    if (!extendedXmp_.empty()) {
      header_.blocks.extendedXmp =
          joinExtendedXmp(extendedXmp_, xmpExtensionName(header_.blocks.xmp));
    }
    header_.blocks.format = UTTypeJPEG.identifier();
    budget_.tell(header_.formatProperties);
    return std::move(header_);
  }

 private:
  struct Segment {
    unsigned marker = 0;
    std::uint64_t offset = 0;  // of the contents, behind the length
    std::size_t size = 0;
  };

  struct ProfileChunk {
    std::size_t number = 0;  // from 1
    std::size_t count = 0;
    Data bytes;
  };

  CGImageSourceStatus walk() {
    if (!window_.at(0, 2).startsWith("\xFF\xD8")) return CGImageSourceStatus::unknownType;
    offset_ = 2;
    for (int i = 0; i < maximumSegments; ++i) {
      Segment segment;
      if (const auto status = next(segment); status != CGImageSourceStatus::complete) return status;
      if (segment.marker == endOfImage) return CGImageSourceStatus::incomplete;
      if (segment.marker == startOfScan) {
        return header_.size.width > 0 ? CGImageSourceStatus::complete
                                      : CGImageSourceStatus::invalidData;
      }
      if (isStartOfFrame(segment.marker)) {
        if (!readFrame(segment)) return CGImageSourceStatus::invalidData;
      } else {
        readApplicationSegment(segment);
      }
    }
    return CGImageSourceStatus::invalidData;
  }

  /// Steps to the next marker and over its segment.
  CGImageSourceStatus next(Segment& segment) {
    // Fill bytes may stand before a marker; some cameras leave others there too.
    for (int stray = 0; stray < maximumStrayBytes; ++stray) {
      const ByteReader bytes = window_.at(offset_, 4);
      if (bytes.size() < 2) return CGImageSourceStatus::incomplete;
      segment.marker = bytes.at<std::uint8_t>(1);
      if (bytes.at<std::uint8_t>(0) != 0xFF || segment.marker == 0 || segment.marker == 0xFF ||
          isBare(segment.marker)) {
        ++offset_;
        continue;
      }
      if (segment.marker == endOfImage) return CGImageSourceStatus::complete;
      if (bytes.size() < 4) return CGImageSourceStatus::incomplete;
      const std::size_t length = bytes.at<std::uint16_t>(2);  // counts itself
      if (length < 2 || segment.marker == startOfImage) return CGImageSourceStatus::invalidData;
      segment.offset = offset_ + 4;
      segment.size = length - 2;
      offset_ += 2 + length;
      return offset_ <= source_.size() ? CGImageSourceStatus::complete
                                       : CGImageSourceStatus::incomplete;
    }
    return CGImageSourceStatus::invalidData;
  }

  /// False for a second frame or an impossible one.
  bool readFrame(const Segment& segment) {
    ByteReader bytes = window_.at(segment.offset, segment.size);
    if (header_.size.width > 0) return false;
    header_.bitsPerComponent = bytes.take<std::uint8_t>();
    header_.size.height = bytes.take<std::uint16_t>();
    header_.size.width = bytes.take<std::uint16_t>();
    const std::size_t components = bytes.take<std::uint8_t>();
    header_.model = components == 1   ? CGColorSpaceModel::monochrome
                    : components == 3 ? CGColorSpaceModel::rgb
                    : components == 4 ? CGColorSpaceModel::cmyk
                                      : CGColorSpaceModel::unknown;
    if (isProgressive(segment.marker)) {
      header_.formatProperties.subdictionary(kCGImagePropertyJFIFDictionary)
          .set(kCGImagePropertyJFIFIsProgressive, true);
    }
    return header_.size.width > 0 && header_.size.height > 0 && header_.bitsPerComponent >= 2 &&
           header_.bitsPerComponent <= 16 && components > 0 && bytes.size() == 3 * components;
  }

  void readApplicationSegment(const Segment& segment) {
    bool isRead = false;
    switch (segment.marker) {
      case application0:
        readJfif(window_.at(segment.offset, std::min<std::size_t>(segment.size, 14)));
        break;
      case application1:
        isRead = readExifOrXmp(segment);
        break;
      case application2:
        readProfileChunk(segment);
        break;
      case application13:
        if (const Data bytes = contents(segment, jpegResourcesSignature); !bytes.empty()) {
          addResources(bytes);
        }
        break;
      default:
        break;
    }
    const bool isPart = segment.marker == comment ||
                        (segment.marker >= application0 && segment.marker <= application15);
    if (isPart && !isRead && isKept(segment)) {
      if (Data all = contents(segment, ""); !all.empty()) {
        header_.blocks.formatParts.push_back({segment.marker, std::move(all)});
      }
    }
  }

  /// Some cameras put a large picture into segments that follow one another; only the first of them
  /// can be told.
  bool isKept(const Segment& segment) {
    constexpr std::size_t enough = 64;
    const ByteReader bytes = window_.at(segment.offset, std::min(segment.size, enough));
    const bool isPicture =
        segment.marker >= application2 && segment.marker <= application5 &&
        (bytes.startsWith("\xFF\xD8\xFF") || bytes.startsWith({"QVGA\0\xFF\xD8\xFF", 8}) ||
         bytes.startsWith("BGTH\xFF\xD8\xFF"));
    if (isPicture || segment.marker != picture_) picture_ = isPicture ? segment.marker : 0;
    return picture_ == 0 &&
           std::none_of(std::begin(notKept), std::end(notKept), [&](const Kind& kind) {
             return kind.marker == segment.marker && bytes.startsWith(kind.signature);
           });
  }

  void addResources(const Data& bytes) {
    resourcesSize_ += bytes.size();
    if (resourcesSize_ > maximumResourcesSize) {
      budget_.leaveOut(kCGImagePropertyIPTCDictionary);
    } else {
      imageResources_.push_back(bytes);
    }
  }

  /// JFIF 1.02: version, unit of density, densities, thumbnail.
  void readJfif(ByteReader bytes) {
    if (hasJfif_ || bytes.size() < 12 || !bytes.startsWith({"JFIF\0", 5})) return;
    hasJfif_ = true;
    bytes.take(5);
    const int major = bytes.take<std::uint8_t>();
    const int minor = bytes.take<std::uint8_t>();
    const int unit = bytes.take<std::uint8_t>();
    const int x = bytes.take<std::uint16_t>();
    const int y = bytes.take<std::uint16_t>();
    Dictionary& jfif = header_.formatProperties.subdictionary(kCGImagePropertyJFIFDictionary);
    jfif.set(kCGImagePropertyJFIFVersion,
             Value(Array{major, minor / 10, minor % 10}));  // 1.02 is [1, 0, 2]
    jfif.set(kCGImagePropertyJFIFDensityUnit, unit);
    jfif.set(kCGImagePropertyJFIFXDensity, x);
    jfif.set(kCGImagePropertyJFIFYDensity, y);
    if (x > 0 && y > 0 && (unit == 1 || unit == 2)) {  // a inch, a centimetre
      const auto perInch = [&](int density) {
        return unit == 1 ? Value(density) : Value(density * 2.54);
      };
      header_.formatProperties.set(kCGImagePropertyDPIWidth, perInch(x));
      header_.formatProperties.set(kCGImagePropertyDPIHeight, perInch(y));
    }
  }

  /// Whether the segment has been taken.
  bool readExifOrXmp(const Segment& segment) {
    MetadataBlocks& blocks = header_.blocks;
    if (blocks.exif.empty()) {
      // The last byte of the signature is padding, and not always 0.
      blocks.exif = contents(segment, jpegExifSignature.substr(0, jpegExifSignature.size() - 1), 1);
      if (!blocks.exif.empty()) return true;
    }
    if (blocks.xmp.empty()) {
      blocks.xmp = contents(segment, jpegXmpSignature);
      if (!blocks.xmp.empty()) return true;
    }
    if (!contents(segment, jpegExtendedXmpSignature).empty()) {
      extendedXmp_.push_back(window_.shared(segment.offset, segment.size));
      return true;
    }
    return false;
  }

  void readProfileChunk(const Segment& segment) {
    if (const Data bytes = contents(segment, jpegProfileSignature, 2); !bytes.empty()) {
      ByteReader number = window_.at(segment.offset + jpegProfileSignature.size(), 2);
      profileChunks_.push_back({number.take<std::uint8_t>(), number.take<std::uint8_t>(), bytes});
    }
  }

  /// What stands `distance` bytes behind the signature; empty for another signature and when there
  /// is too much already.
  Data contents(const Segment& segment, std::string_view signature, std::size_t distance = 0) {
    const std::size_t skipped = signature.size() + distance;
    if (segment.size <= skipped ||
        !window_.at(segment.offset, signature.size()).startsWith(signature)) {
      return {};
    }
    if (metadataSize_ + segment.size > maximumMetadataSize) {
      budget_.leaveOut(signature.substr(0, signature.find('\0')));
      return {};
    }
    metadataSize_ += segment.size;
    // The whole segment is read, so that its beginning stays at hand.
    window_.at(segment.offset, segment.size);
    return window_.shared(segment.offset + skipped, segment.size - skipped);
  }

  Data profile() {
    std::sort(profileChunks_.begin(), profileChunks_.end(),
              [](const ProfileChunk& a, const ProfileChunk& b) { return a.number < b.number; });
    std::vector<Data> pieces;
    for (ProfileChunk& chunk : profileChunks_) {
      pieces.push_back(std::move(chunk.bytes));
      if (chunk.number != pieces.size() || chunk.count != profileChunks_.size()) return {};
    }
    return joined(pieces);
  }

  const ByteSource& source_;
  Window window_;
  std::uint64_t offset_ = 0;
  ImageHeader header_;
  bool hasJfif_ = false;
  std::vector<ProfileChunk> profileChunks_;
  std::vector<Data> imageResources_;
  std::vector<Data> extendedXmp_;  // whole contents of segments
  unsigned picture_ = 0;           // the marker of the segment before, where it was of a picture
  std::size_t metadataSize_ = 0;
  std::size_t resourcesSize_ = 0;
  MetadataBudget budget_;
};

}  // namespace

ImageHeader readJpegHeader(const ByteSource& source) { return HeaderReader(source).read(); }

}  // namespace FrameworkUtility::detail
