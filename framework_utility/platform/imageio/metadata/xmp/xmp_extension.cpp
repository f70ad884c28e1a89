#include <framework_utility/platform/imageio/metadata/xmp/xmp_extension.h>

#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/imageio/metadata/values/text_encoding.h>
#include <framework_utility/platform/imageio/metadata/xmp/xml_walk.h>
#include <framework_utility/platform/imageio/metadata/xmp/xmp_packet.h>

#include <algorithm>
#include <map>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace FrameworkUtility::detail {
namespace {

constexpr std::string_view rdfUri = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
constexpr std::size_t maximumProperties = 65536;

/// Prefixes and what they stand for.
using Namespaces = std::map<std::string, std::string, std::less<>>;

Data dataOf(std::string_view text) { return Data(std::as_bytes(std::span(text))); }

/// An attribute or element of a description, with the white space before it.
struct Property {
  TextRange range;
  bool isAttribute = false;
};

/// A child of rdf:RDF.
struct Description {
  TextRange range;                         // with its tags and the white space before it
  TextRange tag;                           // the start tag
  std::size_t nameEnd{};                   // in the start tag
  std::vector<std::string_view> prefixes;  // that its tag declares
  std::vector<Property> properties;        // of an rdf:Description
};

/// Where the parts of a packet stand that may be moved to another one.
class Outline : XmlWalk {
 public:
  /// Null when the packet cannot be parsed or has no place for descriptions.
  static std::unique_ptr<const Outline> of(std::string_view packet) {
    std::unique_ptr<Outline> outline(new Outline(packet));
    if (!outline->walk() || outline->end_ == 0) return nullptr;
    return outline;
  }
  ~Outline() override = default;

  /// Where another description may stand: before the end tag of rdf:RDF.
  std::size_t end() const { return end_; }
  /// Those that rdf:RDF's children see.
  const Namespaces& namespaces() const { return namespaces_; }
  const std::vector<Description>& descriptions() const { return descriptions_; }

 private:
  explicit Outline(std::string_view packet) : XmlWalk(packet) {}

  void declare(std::string_view prefix, std::string_view uri) override {
    if (rdfDepth_ == 0) declared_.push_back({depth_ + 1, std::string(prefix), std::string(uri)});
  }

  void start(std::string_view name, const char**) override {
    ++depth_;
    if (rdfDepth_ == 0) {
      if (name == rdfRoot && end_ == 0) enterRdf();
    } else if (depth_ == rdfDepth_ + 1) {
      addDescription(name == rdfDescription);
    } else if (depth_ == rdfDepth_ + 2) {
      begin_ = withBlanksBefore(tag().begin);
    }
  }

  void end() override {
    if (depth_ == rdfDepth_) {
      if (tag().begin != tag().end) end_ = withBlanksBefore(tag().begin);
      rdfDepth_ = 0;
    } else if (rdfDepth_ != 0 && depth_ == rdfDepth_ + 1) {
      descriptions_.back().range.end = tag().end;
    } else if (rdfDepth_ != 0 && depth_ == rdfDepth_ + 2 && isPlain_) {
      addProperty({.range = {begin_, tag().end}, .isAttribute = false});
    }
    while (!declared_.empty() && declared_.back().depth >= depth_) declared_.pop_back();
    --depth_;
  }

  void enterRdf() {
    rdfDepth_ = depth_;
    for (Declaration& declaration : declared_) {
      namespaces_.insert_or_assign(std::move(declaration.prefix), std::move(declaration.uri));
    }
    declared_.clear();
  }

  void addDescription(bool isPlain) {
    isPlain_ = isPlain;
    Description& description = descriptions_.emplace_back();
    description.tag = tag();
    description.range.begin = withBlanksBefore(tag().begin);
    description.nameEnd = packet().find_first_of(" \t\r\n/>", tag().begin);
    if (descriptions_.size() > maximumProperties) refuse();
    forEachAttribute([&](const XmlAttribute& attribute) {
      const std::string_view prefix =
          attribute.name.substr(0, std::min(attribute.name.find(':'), attribute.name.size()));
      if (attribute.name == "xmlns") {
        description.prefixes.emplace_back();
      } else if (prefix == "xmlns") {
        description.prefixes.push_back(attribute.name.substr(prefix.size() + 1));
      } else if (isPlain && prefix != "xml" && prefix.size() < attribute.name.size() &&
                 !attribute.name.ends_with(":about")) {
        addProperty({.range = attribute.whole, .isAttribute = true});
      }
    });
    std::sort(description.prefixes.begin(), description.prefixes.end());
  }

  void addProperty(const Property& property) {
    if (++propertyCount_ > maximumProperties) return refuse();
    descriptions_.back().properties.push_back(property);
  }

  struct Declaration {
    int depth;
    std::string prefix, uri;
  };

  int depth_ = 0;
  int rdfDepth_ = 0;  // 0 outside
  std::vector<Declaration> declared_;
  Namespaces namespaces_;
  std::vector<Description> descriptions_;
  std::size_t end_ = 0;
  std::size_t begin_ = 0;  // of the open property
  std::size_t propertyCount_ = 0;
  bool isPlain_ = false;  // whether the open child is an rdf:Description
};

/// What is seen at one place and not, or as something else, at another.
Namespaces missing(const Namespaces& here, const Namespaces& there) {
  Namespaces result;
  for (const auto& [prefix, uri] : here) {
    if (const auto other = there.find(prefix); other == there.end() || other->second != uri) {
      result.emplace_hint(result.end(), prefix, uri);
    }
  }
  return result;
}

/// As attributes, for a description that goes where they are missing.
std::string declarations(const Namespaces& missing, const Description& description) {
  std::string out;
  for (const auto& [prefix, uri] : missing) {
    if (std::binary_search(description.prefixes.begin(), description.prefixes.end(), prefix)) {
      continue;
    }
    out.append(prefix.empty() ? " xmlns" : " xmlns:").append(prefix).append("=\"");
    appendXmlEscaped(out, uri);
    out += '"';
  }
  return out;
}

/// The text without these ranges, which are in order.
std::string without(std::string_view text, const std::vector<TextRange>& ranges) {
  std::string out;
  std::size_t at = 0;
  for (const TextRange& range : ranges) {
    out += text.substr(at, range.begin - at);
    at = range.end;
  }
  return out += text.substr(at);
}

/// The property that holds the name.
std::optional<XmpProperty> extensionNameIn(std::string_view packet) {
  if (packet.find("HasExtendedXMP") == packet.npos) return std::nullopt;
  MetadataBudget budget;
  std::optional<std::vector<XmpProperty>> properties = parseXmpPacket(packet, budget);
  if (!properties) return std::nullopt;
  for (XmpProperty& property : *properties) {
    if (property.mapping->form == XmpForm::extensionName) return std::move(property);
  }
  return std::nullopt;
}

}  // namespace

std::string xmpExtensionName(const Data& packet) {
  const std::optional<XmpProperty> found = extensionNameIn(asText(packet));
  return found ? found->text : std::string();
}

std::optional<Data> withXmpExtensionName(const Data& packet, std::string_view name) {
  std::string text(asText(packet));
  if (const std::optional<XmpProperty> old = extensionNameIn(text)) {
    text.erase(old->whole.begin, old->whole.size());
  }
  if (!name.empty()) {
    const std::unique_ptr<const Outline> outline = Outline::of(text);
    if (!outline) return std::nullopt;
    std::string note = "\n<rdf:Description rdf:about=\"\" xmlns:rdf=\"";
    note.append(rdfUri).append("\" xmlns:xmpNote=\"http://ns.adobe.com/xmp/note/\"");
    note.append(" xmpNote:HasExtendedXMP=\"").append(name).append("\"/>");
    text.insert(outline->end(), note);
  }
  return dataOf(text);
}

Data joinedXmp(const Data& packet, const Data& extension) {
  const std::optional<Data> unnamed = withXmpExtensionName(packet, {});
  const std::unique_ptr<const Outline> to = Outline::of(asText(*unnamed));
  const std::unique_ptr<const Outline> from = Outline::of(asText(extension));
  if (!to || !from) return packet;
  const Namespaces undeclared = missing(from->namespaces(), to->namespaces());
  const std::string_view source = asText(extension);
  std::string moved;
  for (const Description& description : from->descriptions()) {
    const auto& [begin, end] = description.range;
    moved += source.substr(begin, description.nameEnd - begin);
    moved += declarations(undeclared, description);
    moved += source.substr(description.nameEnd, end - description.nameEnd);
    if (moved.size() > 2 * source.size() + packet.size()) return packet;
  }
  return dataOf(std::string(asText(*unnamed)).insert(to->end(), moved));
}

std::optional<XmpParts> splitXmp(const Data& packet, std::size_t limit) {
  const std::string_view text = asText(packet);
  const std::unique_ptr<const Outline> outline = Outline::of(text);
  if (!outline) return std::nullopt;

  std::vector<TextRange> longest;
  for (const Description& description : outline->descriptions()) {
    for (const Property& property : description.properties) longest.push_back(property.range);
  }
  std::stable_sort(longest.begin(), longest.end(),
                   [](const TextRange& a, const TextRange& b) { return a.size() > b.size(); });
  std::size_t rest = text.size();
  std::size_t count = 0;
  while (rest > limit && count < longest.size()) rest -= longest[count++].size();
  if (rest > limit) return std::nullopt;
  longest.resize(count);
  std::sort(longest.begin(), longest.end(),
            [](const TextRange& a, const TextRange& b) { return a.begin < b.begin; });

  const Namespaces undeclared =
      missing(outline->namespaces(), {{"rdf", std::string(rdfUri)}, {"x", "adobe:ns:meta/"}});
  std::string extension = "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF xmlns:rdf=\"";
  extension.append(rdfUri).append("\">");
  auto moved = longest.begin();
  for (const Description& description : outline->descriptions()) {
    std::vector<TextRange> staying;  // attributes
    std::string elements;
    bool isMoved = false;
    for (const Property& property : description.properties) {
      const bool goes = moved != longest.end() && moved->begin == property.range.begin;
      if (goes) ++moved;
      isMoved |= goes;
      if (property.isAttribute && !goes) {
        staying.push_back({property.range.begin - description.tag.begin,
                           property.range.end - description.tag.begin});
      } else if (!property.isAttribute && goes) {
        elements += property.range.in(text);
      }
    }
    if (!isMoved) continue;
    std::string tag = without(description.tag.in(text), staying);
    tag.resize(tag.find_last_not_of("/>") + 1);
    const std::size_t nameSize = description.nameEnd - description.tag.begin;
    const std::string name = tag.substr(1, nameSize - 1);
    tag.insert(nameSize, declarations(undeclared, description));
    extension.append("\n").append(tag).append(">").append(elements);
    extension.append("</").append(name).append(">");
    if (extension.size() > 3 * text.size()) return std::nullopt;
  }
  extension += "\n</rdf:RDF></x:xmpmeta>";
  return XmpParts{dataOf(without(text, longest)), dataOf(extension)};
}

}  // namespace FrameworkUtility::detail
