#include <framework_utility/platform/imageio/xmp/xmp_packet.h>

#include <expat.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>

namespace FrameworkUtility::detail {
namespace {

constexpr std::size_t maximumSize = 16u << 20;
constexpr std::size_t maximumDepth = 64;  // real packets need about a dozen
constexpr std::size_t maximumCount = 65536;
constexpr std::string_view blanks = " \t\r\n";

constexpr std::string_view rdfRoot = "http://www.w3.org/1999/02/22-rdf-syntax-ns#|RDF",
                           rdfDescription =
                               "http://www.w3.org/1999/02/22-rdf-syntax-ns#|Description",
                           rdfSeq = "http://www.w3.org/1999/02/22-rdf-syntax-ns#|Seq",
                           rdfBag = "http://www.w3.org/1999/02/22-rdf-syntax-ns#|Bag",
                           rdfAlt = "http://www.w3.org/1999/02/22-rdf-syntax-ns#|Alt",
                           rdfItem = "http://www.w3.org/1999/02/22-rdf-syntax-ns#|li",
                           xmlLanguage = "http://www.w3.org/XML/1998/namespace|lang";

// What an open element is to us.
enum class Node : std::uint8_t { outside, rdf, description, property, array, item, ignored };

struct ParserDeleter {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

class PacketParser {
 public:
  explicit PacketParser(std::string_view packet)
      : packet_(packet), parser_(XML_ParserCreateNS("UTF-8", '|')) {}

  std::optional<std::vector<XmpProperty>> parse() {
    if (!parser_) return std::nullopt;
    // A packet has no DOCTYPE. Refusing it refuses entities, and with them all that could grow;
    // expat's own limit on amplification stays on beneath.
    XML_SetUserData(parser_.get(), this);
    XML_SetStartDoctypeDeclHandler(
        parser_.get(), [](void* self, const XML_Char*, const XML_Char*, const XML_Char*, int) {
          static_cast<PacketParser*>(self)->refuse();
        });
    XML_SetElementHandler(
        parser_.get(),
        [](void* self, const XML_Char* name, const XML_Char** attributes) {
          static_cast<PacketParser*>(self)->guarded(
              [&](PacketParser& parser) { parser.start(name, attributes); });
        },
        [](void* self, const XML_Char*) {
          static_cast<PacketParser*>(self)->guarded([](PacketParser& parser) { parser.end(); });
        });
    XML_SetCharacterDataHandler(parser_.get(), [](void* self, const XML_Char* text, int length) {
      static_cast<PacketParser*>(self)->guarded([&](PacketParser& parser) {
        parser.characters({text, static_cast<std::size_t>(length)});
      });
    });
    const XML_Status status =
        XML_Parse(parser_.get(), packet_.data(), static_cast<int>(packet_.size()), XML_TRUE);
    if (status != XML_STATUS_OK || refused_) return std::nullopt;
    return std::move(properties_);
  }

 private:
  // No exception may pass through expat's frames.
  template <class Handler>
  void guarded(Handler handler) {
    if (refused_) return;
    try {
      handler(*this);
    } catch (...) {
      refuse();
    }
  }

  void refuse() {
    refused_ = true;
    XML_StopParser(parser_.get(), XML_FALSE);
  }

  // Where the tag stands that is being handled; empty at the end of an element like <a/>.
  TextRange tag() const {
    const auto begin = static_cast<std::size_t>(XML_GetCurrentByteIndex(parser_.get()));
    return {begin, begin + static_cast<std::size_t>(XML_GetCurrentByteCount(parser_.get()))};
  }

  std::size_t withBlanksBefore(std::size_t begin) const {
    const std::size_t last = packet_.substr(0, begin).find_last_not_of(blanks);
    return last == std::string_view::npos ? 0 : last + 1;
  }

  // Whether one property or item more may be kept.
  bool isWithinCount() {
    if (++count_ > maximumCount) refuse();
    return !refused_;
  }

  void start(std::string_view name, const XML_Char** attributes) {
    if (path_.size() == maximumDepth) return refuse();
    path_.push_back(nodeOf(name, path_.empty() ? Node::outside : path_.back(), attributes));
  }

  Node nodeOf(std::string_view name, Node parent, const XML_Char** attributes) {
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
        for (; *attributes; attributes += 2)
          item.isDefaultLanguage |=
              attributes[0] == xmlLanguage && std::string_view(attributes[1]) == "x-default";
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

  void end() {
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

  void characters(std::string_view text) {
    if (path_.empty()) return;
    if (path_.back() == Node::property) property_.text += text;
    if (path_.back() == Node::item) property_.items.back().text += text;
  }

  // expat gives the attributes in the order in which they stand in the tag, less the declarations
  // of namespaces; the places are found by walking the tag beside them.
  void addAttributes(const XML_Char** attributes) {
    std::size_t at = packet_.find_first_of(" \t\r\n/>", tag().begin);
    while (true) {
      const std::size_t whole = at;
      const std::size_t name = packet_.find_first_not_of(blanks, at);
      const std::size_t equals = packet_.find('=', name);
      if (name >= packet_.size() || packet_[name] == '/' || packet_[name] == '>') return;
      const std::size_t quote = packet_.find_first_of("\"'", equals);
      if (quote >= packet_.size()) return refuse();
      const std::size_t close = packet_.find(packet_[quote], quote + 1);
      if (close >= packet_.size()) return refuse();
      at = close + 1;
      const std::string_view rawName =
          packet_.substr(name, packet_.find_first_of(" \t\r\n=", name) - name);
      if (rawName == "xmlns" || rawName.starts_with("xmlns:")) continue;
      if (!attributes[0]) return refuse();
      const XmpMapping* mapping = findXmpMapping(attributes[0]);
      if (mapping && isWithinCount())
        properties_.push_back({.mapping = mapping,
                               .text = attributes[1],
                               .whole = {whole, at},
                               .content = {quote + 1, close}});
      attributes += 2;
    }
  }

  std::string_view packet_;
  std::unique_ptr<std::remove_pointer_t<XML_Parser>, ParserDeleter> parser_;
  std::vector<Node> path_;
  XmpProperty property_;  // the one whose element is open
  std::vector<XmpProperty> properties_;
  std::size_t count_ = 0;
  bool refused_ = false;
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

std::optional<std::vector<XmpProperty>> parseXmpPacket(std::string_view packet) {
  if (packet.size() > maximumSize) return std::nullopt;
  return PacketParser(packet).parse();
}

}  // namespace FrameworkUtility::detail
