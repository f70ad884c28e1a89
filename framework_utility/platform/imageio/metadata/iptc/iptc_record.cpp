#include <framework_utility/platform/imageio/metadata/iptc/iptc_record.h>

#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/foundation/values/byte_writer.h>
#include <framework_utility/platform/foundation/values/utf8.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <algorithm>
#include <array>
#include <bitset>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

namespace FrameworkUtility::detail {
namespace {

constexpr std::uint8_t tagMarker = 0x1C;
constexpr std::size_t largestShortSize = 0x7FFF;
constexpr std::size_t maximumCount = 65536;  // of datasets; what follows is kept unread
constexpr std::uint8_t envelopeRecord = 1, applicationRecord = 2;
constexpr std::uint8_t characterSet = 90;  // in the envelope
constexpr std::uint8_t version = 0;        // in either record
constexpr std::string_view utf8Designation = "\x1B%G";

struct Mapping {
  std::uint8_t dataset;
  std::string_view key;
  bool isRepeated = false;  // its entry is an array
};

constexpr Mapping mappings[] = {
    {3, kCGImagePropertyIPTCObjectTypeReference},
    {4, kCGImagePropertyIPTCObjectAttributeReference, true},
    {5, kCGImagePropertyIPTCObjectName},
    {7, kCGImagePropertyIPTCEditStatus},
    {8, kCGImagePropertyIPTCEditorialUpdate},
    {10, kCGImagePropertyIPTCUrgency},
    {12, kCGImagePropertyIPTCSubjectReference, true},
    {15, kCGImagePropertyIPTCCategory},
    {20, kCGImagePropertyIPTCSupplementalCategory, true},
    {22, kCGImagePropertyIPTCFixtureIdentifier},
    {25, kCGImagePropertyIPTCKeywords, true},
    {26, kCGImagePropertyIPTCContentLocationCode, true},
    {27, kCGImagePropertyIPTCContentLocationName, true},
    {30, kCGImagePropertyIPTCReleaseDate},
    {35, kCGImagePropertyIPTCReleaseTime},
    {37, kCGImagePropertyIPTCExpirationDate},
    {38, kCGImagePropertyIPTCExpirationTime},
    {40, kCGImagePropertyIPTCSpecialInstructions},
    {42, kCGImagePropertyIPTCActionAdvised},
    {45, kCGImagePropertyIPTCReferenceService, true},
    {47, kCGImagePropertyIPTCReferenceDate, true},
    {50, kCGImagePropertyIPTCReferenceNumber, true},
    {55, kCGImagePropertyIPTCDateCreated},
    {60, kCGImagePropertyIPTCTimeCreated},
    {62, kCGImagePropertyIPTCDigitalCreationDate},
    {63, kCGImagePropertyIPTCDigitalCreationTime},
    {65, kCGImagePropertyIPTCOriginatingProgram},
    {70, kCGImagePropertyIPTCProgramVersion},
    {75, kCGImagePropertyIPTCObjectCycle},
    {80, kCGImagePropertyIPTCByline, true},
    {85, kCGImagePropertyIPTCBylineTitle, true},
    {90, kCGImagePropertyIPTCCity},
    {92, kCGImagePropertyIPTCSubLocation},
    {95, kCGImagePropertyIPTCProvinceState},
    {100, kCGImagePropertyIPTCCountryPrimaryLocationCode},
    {101, kCGImagePropertyIPTCCountryPrimaryLocationName},
    {103, kCGImagePropertyIPTCOriginalTransmissionReference},
    {105, kCGImagePropertyIPTCHeadline},
    {110, kCGImagePropertyIPTCCredit},
    {115, kCGImagePropertyIPTCSource},
    {116, kCGImagePropertyIPTCCopyrightNotice},
    {118, kCGImagePropertyIPTCContact, true},
    {120, kCGImagePropertyIPTCCaptionAbstract},
    {122, kCGImagePropertyIPTCWriterEditor},
    {130, kCGImagePropertyIPTCImageType},
    {131, kCGImagePropertyIPTCImageOrientation},
    {135, kCGImagePropertyIPTCLanguageIdentifier},
};

const Mapping* findMapping(std::uint8_t dataset) {
  const auto found = std::find_if(std::begin(mappings), std::end(mappings),
                                  [&](const Mapping& each) { return each.dataset == dataset; });
  return found == std::end(mappings) ? nullptr : found;
}

struct Dataset {
  std::uint8_t record = 0;
  std::uint8_t number = 0;
  std::span<const std::byte> whole;  // with its header
  std::span<const std::byte> data;
  bool is(std::uint8_t aRecord, std::uint8_t aNumber) const {
    return record == aRecord && number == aNumber;
  }
};

/// The dataset that a record begins with; absent at its end or where it is damaged.
std::optional<Dataset> firstDataset(std::span<const std::byte> record) {
  ByteReader reader(record);
  if (reader.take<std::uint8_t>() != tagMarker) return std::nullopt;
  Dataset dataset;
  dataset.record = reader.take<std::uint8_t>();
  dataset.number = reader.take<std::uint8_t>();
  std::size_t size = reader.take<std::uint16_t>();
  if (size > largestShortSize) {  // then it is the length of the size that follows
    const std::size_t length = size & largestShortSize;
    if (length > 4) return std::nullopt;
    size = reader.takeNumber(length);
  }
  dataset.data = reader.take(size);
  dataset.whole = record.first(record.size() - reader.size());
  return reader.isCut() ? std::nullopt : std::optional(dataset);
}

struct Record {
  std::vector<Dataset> datasets;
  std::span<const std::byte> rest;  // padding, or what is damaged
};

Record parseRecord(std::span<const std::byte> bytes) {
  Record record{{}, bytes};
  while (const std::optional<Dataset> dataset = firstDataset(record.rest)) {
    if (record.datasets.size() == maximumCount) break;
    record.datasets.push_back(*dataset);
    record.rest = record.rest.subspan(dataset->whole.size());
  }
  return record;
}

std::string_view textOf(std::span<const std::byte> data) {
  const std::string_view text = asText(data);
  return text.substr(0, text.find_last_not_of('\0') + 1);
}

std::string decoded(std::span<const std::byte> data) {
  const std::string_view text = textOf(data);
  return utf8::isValid(text) ? std::string(text) : utf8::fromLatin1(text);
}

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
}

Dictionary entriesOf(const Record& record, MetadataBudget& budget) {
  Dictionary entries;
  std::bitset<std::size(mappings)> leftOut;  // A list of which a part does not fit goes as a whole.
  for (const Dataset& dataset : record.datasets) {
    const Mapping* mapping =
        dataset.record == applicationRecord ? findMapping(dataset.number) : nullptr;
    if (!mapping || leftOut.test(static_cast<std::size_t>(mapping - mappings))) continue;
    Value* entry = entries.find(mapping->key);
    if (entry && !mapping->isRepeated) continue;
    if (!budget.spend(1, dataset.data.size())) {
      leftOut.set(static_cast<std::size_t>(mapping - mappings));
      entries.remove(mapping->key);
      budget.leaveOut(kCGImagePropertyIPTCDictionary);
    } else if (!mapping->isRepeated) {
      entries.set(mapping->key, decoded(dataset.data));
    } else if (entry) {
      entry->as<Array>()->emplace_back(decoded(dataset.data));
    } else {
      entries.set(mapping->key, Value(Array{decoded(dataset.data)}));
    }
  }
  return entries;
}

/// What an entry would store; nothing for values that are no text.
std::vector<std::string> textsOf(const Value* value) {
  std::vector<std::string> texts;
  const auto append = [&](const Value& element) {
    if (const auto* text = element.as<std::string>()) texts.push_back(*text);
    if (const auto* number = element.as<Number>()) texts.push_back(number->description());
  };
  if (const Array* array = value ? value->as<Array>() : nullptr) {
    for (const Value& element : *array) append(element);
  } else if (value) {
    append(*value);
  }
  return texts;
}

void putDataset(ByteWriter& out, std::uint8_t record, std::uint8_t number, std::string_view data) {
  out.put<std::uint8_t>(tagMarker).put<std::uint8_t>(record).put<std::uint8_t>(number);
  if (data.size() <= largestShortSize) {
    out.putNumber(data.size(), 2);
  } else {
    out.put<std::uint16_t>(0x8004).putNumber(data.size(), 4);
  }
  out.put(data);
}

/// One dataset of the new record: kept bytes, or a text that is written.
struct Planned {
  std::uint8_t record = 0;
  std::uint8_t number = 0;
  std::span<const std::byte> kept;  // empty when it is written
  std::string text;
};

/// The datasets in their order, with the changed ones where the first of their kind stood, or else
/// before those of higher numbers.
std::vector<Planned> plannedDatasets(const Record& record, const Dictionary& before,
                                     const Dictionary& after) {
  std::vector<Planned> plan;
  for (const Dataset& dataset : record.datasets) {
    plan.push_back({dataset.record, dataset.number, dataset.whole, {}});
  }
  for (const Mapping& mapping : mappings) {
    const Value* was = before.find(mapping.key);
    const Value* is = after.find(mapping.key);
    if (was && is ? *was == *is : was == is) continue;
    const auto isOld = [&](const Planned& each) {
      return each.record == applicationRecord && each.number == mapping.dataset;
    };
    auto place = std::find_if(plan.begin(), plan.end(), isOld);
    if (place == plan.end()) {
      place = std::find_if(plan.begin(), plan.end(), [&](const Planned& each) {
        return each.record > applicationRecord ||
               (each.record == applicationRecord && each.number > mapping.dataset);
      });
    }
    const auto index = place - plan.begin();
    plan.erase(std::remove_if(place, plan.end(), isOld), plan.end());
    std::vector<std::string> texts = textsOf(is);
    if (!mapping.isRepeated && texts.size() > 1) texts.resize(1);
    std::vector<Planned> written;
    written.reserve(texts.size());
    for (std::string& text : texts) {
      written.push_back({applicationRecord, mapping.dataset, {}, std::move(text)});
    }
    plan.insert(plan.begin() + index, std::make_move_iterator(written.begin()),
                std::make_move_iterator(written.end()));
  }
  return plan;
}

bool isMarkedUtf8(const Record& record) {
  return std::any_of(record.datasets.begin(), record.datasets.end(), [](const Dataset& dataset) {
    return dataset.is(envelopeRecord, characterSet) && textOf(dataset.data) == utf8Designation;
  });
}

/// Marks the record, and writes anew in UTF-8 the known texts that were kept.
void convertToUtf8(std::vector<Planned>& plan) {
  for (Planned& each : plan) {
    if (each.kept.empty() || each.record != applicationRecord || !findMapping(each.number)) {
      continue;
    }
    const std::span<const std::byte> data = firstDataset(each.kept)->data;
    if (utf8::isValid(textOf(data))) continue;
    each.text = decoded(data);
    each.kept = {};
  }
  std::erase_if(plan, [](const Planned& each) {
    return each.record == envelopeRecord && each.number == characterSet;
  });
  const auto place = std::find_if(plan.begin(), plan.end(), [](const Planned& each) {
    return each.record > envelopeRecord || each.number > characterSet;
  });
  plan.insert(place, {envelopeRecord, characterSet, {}, std::string(utf8Designation)});
}

}  // namespace

Dictionary readIptcRecord(std::span<const std::byte> record, MetadataBudget& budget) {
  return entriesOf(parseRecord(record), budget);
}

std::vector<std::byte> mergeIptcRecord(std::span<const std::byte> bytes, const Dictionary& entries,
                                       MetadataBudget& budget) {
  const Record record = parseRecord(bytes);
  std::vector<Planned> plan = plannedDatasets(record, entriesOf(record, budget), entries);
  const auto isWritten = [](const Planned& each) { return each.kept.empty(); };
  if (std::none_of(plan.begin(), plan.end(), isWritten) && plan.size() == record.datasets.size()) {
    return {bytes.begin(), bytes.end()};
  }

  const bool hasContent = std::any_of(plan.begin(), plan.end(), [](const Planned& each) {
    return each.record > envelopeRecord && each.number != version;
  });
  if (!hasContent && record.rest.empty()) return {};
  const bool needsUtf8 = std::any_of(plan.begin(), plan.end(), [&](const Planned& each) {
    return isWritten(each) && !isAscii(each.text);
  });
  if (needsUtf8 && !isMarkedUtf8(record)) convertToUtf8(plan);
  // The application record must begin with its version.
  if (record.datasets.empty()) {
    const auto place = std::find_if(plan.begin(), plan.end(), [](const Planned& each) {
      return each.record == applicationRecord;
    });
    plan.insert(place, {applicationRecord, version, {}, std::string("\0\4", 2)});
  }

  ByteWriter out;
  for (const Planned& each : plan) {
    if (isWritten(each)) {
      putDataset(out, each.record, each.number, each.text);
    } else {
      out.put(each.kept);
    }
  }
  return out.put(record.rest).takeBytes();
}

}  // namespace FrameworkUtility::detail
