#include <framework_utility/platform/imageio/metadata/xmp/xmp_packet.h>

#include <algorithm>
#include <cstdint>
#include <utility>

namespace FrameworkUtility::detail {
namespace {

constexpr std::size_t maximumCount = 65536;

constexpr std::string_view rdfSeq = "http://www.w3.org/1999/02/22-rdf-syntax-ns#|Seq",
                           rdfBag = "http://www.w3.org/1999/02/22-rdf-syntax-ns#|Bag",
                           rdfAlt = "http://www.w3.org/1999/02/22-rdf-syntax-ns#|Alt",
                           rdfItem = "http://www.w3.org/1999/02/22-rdf-syntax-ns#|li",
                           xmlLanguage = "http://www.w3.org/XML/1998/namespace|lang";

/// What an open element is to us.
enum class Node : std::uint8_t { outside, rdf, description, property, array, item, ignored };

class PacketParser : XmlWalk {
 public:
  PacketParser(std::string_view packet, MetadataBudget& budget)
      : XmlWalk(packet), budget_(budget) {}

  std::optional<std::vector<XmpProperty>> parse() {
    if (!walk()) return std::nullopt;
    return std::move(properties_);
  }

 private:
  /// Whether one property or item more may be kept.
  bool isWithinCount() {
    if (++count_ > maximumCount) refuse();
    return !isRefused();
  }

  void start(std::string_view name, const char** attributes) override {
    path_.push_back(nodeOf(name, path_.empty() ? Node::outside : path_.back(), attributes));
  }

  Node nodeOf(std::string_view name, Node parent, const char** attributes) {
    switch (parent) {
      case Node::outside:
        return name == rdfRoot ? Node::rdf : Node::outside;
      case Node::rdf:
        if (name != rdfDescription) return Node::ignored;
        addAttributes(attributes);
        return Node::description;
      case Node::description: {
        const XmpMapping* mapping = findXmpMapping(name);
        if (!mapping || !isWithinCount()) return Node::ignored;
        property_ = {.mapping = mapping};
        property_.whole.begin = withBlanksBefore(tag().begin);
        property_.content.begin = tag().end;
        return Node::property;
      }
      case Node::property:
        if (name == rdfSeq || name == rdfBag || name == rdfAlt) return Node::array;
        break;
      case Node::array: {
        if (name != rdfItem || !isWithinCount()) break;
        XmpItem& item = property_.items.emplace_back();
        item.element.begin = tag().begin;
        item.content.begin = tag().end;
        for (; *attributes; attributes += 2) {
          item.isDefaultLanguage |=
              attributes[0] == xmlLanguage && std::string_view(attributes[1]) == "x-default";
        }
        return Node::item;
      }
      case Node::item:
        break;
      case Node::ignored:
        return Node::ignored;
    }
    property_.isEditable = false;
    return Node::ignored;
  }

  void end() override {
    const Node node = path_.back();
    path_.pop_back();
    if (node == Node::item) {
      XmpItem& item = property_.items.back();
      item.content.end = tag().begin;
      item.element.end = tag().end;
      if (tag().begin == tag().end) property_.isEditable = false;
    }
    if (node != Node::property) return;
    property_.content.end = tag().begin;
    property_.whole.end = tag().end;
    if (tag().begin == tag().end) property_.isEditable = false;
    // Between the tags of an array there is only white space, and a structure has no text.
    if (!property_.items.empty() || !property_.isEditable) property_.text.clear();
    if (!property_.isEditable) property_.items.clear();
    properties_.push_back(std::move(property_));
  }

  void characters(std::string_view text) override {
    if (path_.empty() || property_.isLeftOut) return;
    if (path_.back() == Node::property) add(text, property_.text, property_);
    if (path_.back() == Node::item) add(text, property_.items.back().text, property_);
  }

  void add(std::string_view text, std::string& to, XmpProperty& property) {
    if (budget_.spend(0, text.size())) {
      to += text;
      return;
    }
    property.isLeftOut = true;
    property.text = {};
    for (XmpItem& item : property.items) item.text = {};
  }

  /// expat gives the attributes less the declarations of namespaces.
  void addAttributes(const char** attributes) {
    forEachAttribute([&](const XmlAttribute& attribute) {
      if (attribute.name == "xmlns" || attribute.name.starts_with("xmlns:")) return;
      if (!attributes[0]) return refuse();
      const XmpMapping* mapping = findXmpMapping(attributes[0]);
      if (mapping && isWithinCount()) {
        XmpProperty& property = properties_.emplace_back();
        property.mapping = mapping;
        property.whole = attribute.whole;
        property.content = attribute.content;
        add(attributes[1], property.text, property);
      }
      attributes += 2;
    });
  }

  MetadataBudget& budget_;
  std::vector<Node> path_;
  XmpProperty property_;  // the one whose element is open
  std::vector<XmpProperty> properties_;
  std::size_t count_ = 0;
};

}  // namespace

const XmpItem* XmpProperty::defaultItem() const {
  if (items.empty()) return nullptr;
  const auto found = std::find_if(items.begin(), items.end(),
                                  [](const XmpItem& item) { return item.isDefaultLanguage; });
  return found == items.end() ? &items.front() : &*found;
}

std::vector<std::string> XmpProperty::texts() const {
  const bool isList = mapping->form == XmpForm::list || mapping->form == XmpForm::integers ||
                      mapping->form == XmpForm::rationals;
  if (items.empty()) return {text};
  if (!isList) return {defaultItem()->text};
  std::vector<std::string> texts;
  for (const XmpItem& item : items) texts.push_back(item.text);
  return texts;
}

std::optional<std::vector<XmpProperty>> parseXmpPacket(std::string_view packet,
                                                       MetadataBudget& budget) {
  if (packet.size() > largestXmpPacket) return std::nullopt;
  return PacketParser(packet, budget).parse();
}

}  // namespace FrameworkUtility::detail
