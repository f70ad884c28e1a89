#include <framework_utility/platform/imageio/metadata/xmp/xmp.h>

#include <framework_utility/platform/imageio/metadata/values/property_keys.h>
#include <framework_utility/platform/imageio/metadata/values/text_encoding.h>
#include <framework_utility/platform/imageio/metadata/xmp/xmp_entries.h>
#include <framework_utility/platform/imageio/metadata/xmp/xmp_packet.h>

#include <algorithm>
#include <bit>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace FrameworkUtility::detail {
namespace {

/// A packet as UTF-8, and the way back to its own encoding.
class PacketText {
 public:
  explicit PacketText(std::span<const std::byte> packet) {
    // A byte-order mark, or the first bracket.
    const auto first = ByteReader(packet).at<char16_t>(0);
    if (first == 0xFEFF || first == '<') utf16_ = std::endian::big;
    if (first == 0xFFFE || first == '<' << 8) utf16_ = std::endian::little;
    isTooLarge_ = packet.size() > (utf16_ ? largestUtf16Packet : largestXmpPacket);
    if (isTooLarge_) return;
    if (utf16_) {
      converted_ = utf8FromUtf16(ByteReader(packet, *utf16_)).value_or(std::string());
      text_ = converted_;
    } else {
      text_ = asText(packet);
    }
  }
  PacketText(const PacketText&) = delete;
  PacketText& operator=(const PacketText&) = delete;

  std::string_view text() const { return text_; }
  /// Then there is no text.
  bool isTooLarge() const { return isTooLarge_; }

  /// Absent when there is nothing in it that the tables know, or when it does not parse.
  std::optional<std::vector<XmpProperty>> properties(XmpUse use, MetadataBudget& budget) const {
    if (!mentionsMappedNamespace(text_, use)) return std::nullopt;
    // Some writers end the packet, or its padding, with NUL bytes, which XML does not allow.
    return parseXmpPacket(text_.substr(0, text_.find_last_not_of('\0') + 1), budget);
  }

  std::vector<std::byte> encoded(std::string_view text) const {
    if (utf16_) return utf16FromUtf8(text, *utf16_);
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
  }

 private:
  /// It takes several times its size to turn one into UTF-8 and back.
  static constexpr std::size_t largestUtf16Packet = largestXmpPacket / 4;

  std::string converted_;
  std::string_view text_;
  bool isTooLarge_ = false;
  std::optional<std::endian> utf16_;
};

/// Changes to be made in a text, all at once in the end, so that places stay what they are.
class TextEdits {
 public:
  explicit TextEdits(std::string_view text) : text_(text) {}

  bool empty() const { return edits_.empty(); }
  void replace(TextRange range, std::string text) { edits_.push_back({range, std::move(text)}); }

  std::string applied() {
    std::sort(edits_.begin(), edits_.end(),
              [](const Edit& a, const Edit& b) { return a.range.begin < b.range.begin; });
    std::string out;
    std::size_t size = text_.size();
    for (const Edit& edit : edits_) size += edit.text.size();
    out.reserve(size);
    std::size_t at = 0;
    for (const Edit& edit : edits_) {
      out += text_.substr(at, edit.range.begin - at);
      out += edit.text;
      at = edit.range.end;
    }
    return out += text_.substr(at);
  }

 private:
  struct Edit {
    TextRange range;
    std::string text;
  };

  std::string_view text_;
  std::vector<Edit> edits_;
};

std::string escaped(std::string_view text) {
  std::string out;
  appendXmlEscaped(out, text);
  return out;
}

/// `texts` as members of the array that `items` are now, under the first one's name and with the
/// white space that stands between them, as long as those are short: a tag can have attributes, a
/// name or blanks by the megabyte, which must not be there once for each text.
std::string rewrittenItems(std::string_view packet, const std::vector<XmpItem>& items,
                           const std::vector<std::string>& texts) {
  constexpr std::size_t enough = 64;
  constexpr std::string_view blanks = " \t\r\n";
  const XmpItem& first = items.front();
  const std::string_view tag =
      packet.substr(first.element.begin, first.content.begin - first.element.begin);
  std::string_view name = tag.substr(0, tag.find_first_of(" \t\r\n/>")).substr(1);
  std::string_view declaration;
  if (name.size() > enough || tag.find("xmlns") != tag.npos) {  // of the name's prefix, perhaps
    name = "rdf:li";
    declaration = " xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"";
  }
  std::string_view between;
  if (items.size() > 1) {
    between = packet.substr(first.element.end, items[1].element.begin - first.element.end);
  }
  if (between.size() > enough || between.find_first_not_of(blanks) != between.npos) between = {};
  std::string out;
  for (const std::string& text : texts) {
    if (!out.empty()) out += between;
    out.append("<").append(name).append(declaration).append(">");
    appendXmlEscaped(out, text);
    out.append("</").append(name).append(">");
  }
  return out;
}

/// Makes the property say `texts`; takes it away where it cannot.
void setTexts(TextEdits& edits, std::string_view packet, const XmpProperty& property,
              const std::vector<std::string>& texts) {
  if (texts == property.texts() && property.isEditable) return;
  const bool holdsOne = property.items.empty() || property.mapping->form == XmpForm::languages;
  if (!property.isEditable || texts.empty() || (holdsOne && texts.size() != 1)) {
    return edits.replace(property.whole, {});
  }
  if (property.items.empty()) return edits.replace(property.content, escaped(texts.front()));
  if (property.mapping->form != XmpForm::languages) {
    return edits.replace({property.items.front().element.begin, property.items.back().element.end},
                         rewrittenItems(packet, property.items, texts));
  }
  // Writers often repeat the default text under the language that it is in; translations stay.
  const XmpItem& old = *property.defaultItem();
  for (const XmpItem& item : property.items) {
    if (&item == &old || (item.text == old.text && !property.isLeftOut)) {
      edits.replace(item.content, escaped(texts.front()));
    }
  }
}

/// The entry, null when it is missing. The orientation at the top level is the one that counts.
const Value* findEntry(const Dictionary& properties, std::string_view dictionary,
                       std::string_view key) {
  if (key.empty()) return nullptr;
  if (dictionary == kCGImagePropertyTIFFDictionary && key == kCGImagePropertyTIFFOrientation) {
    if (const Value* top = properties.find(key); top && top->as<Number>()) return top;
  }
  const auto* entries = properties.get<Dictionary>(dictionary);
  return entries ? entries->find(key) : nullptr;
}

bool haveSameEntries(const XmpMapping& mapping, const Dictionary& a, const Dictionary& b) {
  for (const std::string_view key : {mapping.key, mapping.secondKey}) {
    const Value* left = findEntry(a, mapping.dictionary, key);
    const Value* right = findEntry(b, mapping.dictionary, key);
    if (left && right ? *left != *right : left != right) return false;
  }
  return true;
}

bool hasEntries(const XmpMapping& mapping, const Dictionary& properties) {
  return findEntry(properties, mapping.dictionary, mapping.key) ||
         findEntry(properties, mapping.dictionary, mapping.secondKey);
}

std::vector<std::string> textsFor(const XmpMapping& mapping, const Dictionary& properties) {
  const Value* entry = findEntry(properties, mapping.dictionary, mapping.key);
  if (!entry) return {};
  Dictionary entries;
  entries.set(mapping.key, *entry);
  if (const Value* second = findEntry(properties, mapping.dictionary, mapping.secondKey)) {
    entries.set(mapping.secondKey, *second);
  }
  return xmpTexts(mapping, entries);
}

}  // namespace

Dictionary readXmp(std::span<const std::byte> packet, const Dictionary& properties,
                   MetadataBudget& budget) {
  const PacketText text(packet);
  if (text.isTooLarge()) budget.leaveOut("XMP");
  const std::optional<std::vector<XmpProperty>> found = text.properties(XmpUse::reading, budget);
  // Entries that belong together are filled together or not at all, or a latitude of EXIF could
  // meet a hemisphere of XMP. So what is there is judged before anything is added.
  Dictionary added;
  if (!found) return added;
  for (const XmpProperty& property : *found) {
    const XmpMapping& mapping = *property.mapping;
    if (mapping.dictionary == kCGImagePropertyIPTCDictionary || hasEntries(mapping, properties)) {
      continue;
    }
    if (property.isLeftOut || !budget.spend(2 + property.items.size(), 0)) {
      budget.leaveOut(mapping.dictionary);
      continue;
    }
    Dictionary values = xmpEntries(mapping, property.texts());
    for (const auto& [key, value] : values) {
      Dictionary& entries = added.subdictionary(mapping.dictionary);
      if (!entries.find(key)) entries.set(key, std::move(*values.find(key)));
    }
  }
  return added;
}

void addXmp(Dictionary&& entries, Dictionary& properties) {
  for (const auto& [dictionary, values] : entries) {
    for (const auto& [key, value] : *values.as<Dictionary>()) {
      properties.subdictionary(dictionary)
          .set(key, std::move(*entries.find(dictionary)->as<Dictionary>()->find(key)));
    }
  }
}

std::vector<std::byte> mergeXmp(std::span<const std::byte> packet, const Dictionary& before,
                                const Dictionary& after, const PixelFacts& pixels) {
  const PacketText text(packet);
  TextEdits edits(text.text());
  MetadataBudget budget;
  const std::optional<std::vector<XmpProperty>> found = text.properties(XmpUse::merging, budget);
  if (found) {
    for (const XmpProperty& property : *found) {
      const XmpMapping& mapping = *property.mapping;
      switch (mapping.form) {
        case XmpForm::pixelWidth:
          setTexts(edits, text.text(), property, {std::to_string(pixels.width)});
          break;
        case XmpForm::pixelHeight:
          setTexts(edits, text.text(), property, {std::to_string(pixels.height)});
          break;
        case XmpForm::obsolete:
          edits.replace(property.whole, {});
          break;
        default:
          if (!haveSameEntries(mapping, before, after)) {
            setTexts(edits, text.text(), property, textsFor(mapping, after));
          }
      }
    }
  }
  if (edits.empty()) return {packet.begin(), packet.end()};
  return text.encoded(edits.applied());
}

}  // namespace FrameworkUtility::detail
