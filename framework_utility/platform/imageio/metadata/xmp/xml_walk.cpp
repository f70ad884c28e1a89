#include <framework_utility/platform/imageio/metadata/xmp/xml_walk.h>

#include <expat.h>

namespace FrameworkUtility::detail {
namespace {

constexpr std::size_t maximumSize = 16u << 20;
constexpr int maximumDepth = 64;  // real packets need about a dozen
constexpr std::string_view blanks = " \t\r\n";

}  // namespace

void XmlWalk::ParserDeleter::operator()(XML_ParserStruct* parser) const { XML_ParserFree(parser); }

XmlWalk::XmlWalk(std::string_view packet)
    : packet_(packet), parser_(XML_ParserCreateNS("UTF-8", '|')) {}

XmlWalk::~XmlWalk() = default;

/// No exception may pass through expat's frames.
template <class Handler>
void XmlWalk::guarded(Handler handler) {
  if (isRefused_) return;
  try {
    handler();
  } catch (...) {
    refuse();
  }
}

bool XmlWalk::walk() {
  XML_Parser parser = parser_.get();
  if (!parser || packet_.size() > maximumSize) return false;
  XML_SetUserData(parser, this);
  XML_SetStartDoctypeDeclHandler(
      parser, [](void* self, const XML_Char*, const XML_Char*, const XML_Char*, int) {
        static_cast<XmlWalk*>(self)->refuse();
      });
  XML_SetElementHandler(
      parser,
      [](void* self, const XML_Char* name, const XML_Char** attributes) {
        auto& walk = *static_cast<XmlWalk*>(self);
        if (++walk.depth_ > maximumDepth) walk.refuse();
        walk.guarded([&] { walk.start(name, attributes); });
      },
      [](void* self, const XML_Char*) {
        auto& walk = *static_cast<XmlWalk*>(self);
        --walk.depth_;
        walk.guarded([&] { walk.end(); });
      });
  XML_SetCharacterDataHandler(parser, [](void* self, const XML_Char* text, int length) {
    auto& walk = *static_cast<XmlWalk*>(self);
    walk.guarded([&] { walk.characters({text, static_cast<std::size_t>(length)}); });
  });
  XML_SetStartNamespaceDeclHandler(
      parser, [](void* self, const XML_Char* prefix, const XML_Char* uri) {
        auto& walk = *static_cast<XmlWalk*>(self);
        walk.guarded([&] { walk.declare(prefix ? prefix : "", uri ? uri : ""); });
      });
  return XML_Parse(parser, packet_.data(), static_cast<int>(packet_.size()), XML_TRUE) ==
             XML_STATUS_OK &&
         !isRefused_;
}

void XmlWalk::refuse() {
  isRefused_ = true;
  XML_StopParser(parser_.get(), XML_FALSE);
}

TextRange XmlWalk::tag() const {
  const auto begin = static_cast<std::size_t>(XML_GetCurrentByteIndex(parser_.get()));
  return {begin, begin + static_cast<std::size_t>(XML_GetCurrentByteCount(parser_.get()))};
}

std::size_t XmlWalk::withBlanksBefore(std::size_t begin) const {
  const std::size_t last = packet_.substr(0, begin).find_last_not_of(blanks);
  return last == std::string_view::npos ? 0 : last + 1;
}

bool XmlWalk::findAttribute(XmlAttribute& attribute) {
  const std::size_t whole = attribute.whole.end;
  const std::size_t name = packet_.find_first_not_of(blanks, whole);
  if (name >= packet_.size() || packet_[name] == '/' || packet_[name] == '>') return false;
  const std::size_t quote = packet_.find_first_of("\"'", packet_.find('=', name));
  const std::size_t close =
      quote < packet_.size() ? packet_.find(packet_[quote], quote + 1) : packet_.npos;
  if (close >= packet_.size()) {
    refuse();
    return false;
  }
  attribute.name = packet_.substr(name, packet_.find_first_of(" \t\r\n=", name) - name);
  attribute.whole = {whole, close + 1};
  attribute.content = {quote + 1, close};
  return true;
}

}  // namespace FrameworkUtility::detail
