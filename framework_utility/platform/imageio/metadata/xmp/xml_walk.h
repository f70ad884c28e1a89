#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

struct XML_ParserStruct;

namespace FrameworkUtility::detail {

/// Bytes of a packet from `begin` up to, not including, `end`.
struct TextRange {
  std::size_t begin = 0;
  std::size_t end = 0;

  std::size_t size() const { return end - begin; }
  std::string_view in(std::string_view text) const { return text.substr(begin, size()); }
};

/// An attribute as it stands in its tag.
struct XmlAttribute {
  std::string_view name;  ///< With its prefix.
  TextRange whole;        ///< With the white space before it.
  TextRange content;      ///< Between its quotes.
};

/// A walk over a UTF-8 packet of XMP, element by element. A packet has no DOCTYPE: refusing it
/// refuses entities, and with them all that could grow; expat's own limit on amplification stays on
/// beneath.
class XmlWalk {
 public:
  XmlWalk(const XmlWalk&) = delete;
  XmlWalk& operator=(const XmlWalk&) = delete;

 protected:
  explicit XmlWalk(std::string_view packet);
  virtual ~XmlWalk();

  /// False for a packet that is not well-formed, holds a DOCTYPE, nests more than 64 elements, has
  /// more than 16 MiB or is refused.
  bool walk();
  void refuse();
  bool isRefused() const { return isRefused_; }

  /// Names are "namespace|name". `attributes` are names and values by turns, and a null.
  virtual void start(std::string_view name, const char** attributes) = 0;
  virtual void end() = 0;
  virtual void characters(std::string_view) {}
  /// Before the start of the element that declares it. The prefix may be empty.
  virtual void declare(std::string_view, std::string_view) {}

  std::string_view packet() const { return packet_; }
  /// Where the tag stands that is being handled; empty at the end of an element like <a/>.
  TextRange tag() const;
  std::size_t withBlanksBefore(std::size_t begin) const;

  /// Those of the start tag that is being handled, in its order, which is expat's too.
  template <class Visitor>
  void forEachAttribute(Visitor visit) {
    XmlAttribute attribute{.name = {}, .whole = {tag().begin, tag().begin}, .content = {}};
    attribute.whole.end = packet_.find_first_of(" \t\r\n/>", tag().begin);
    while (!isRefused_ && findAttribute(attribute)) visit(attribute);
  }

 private:
  struct ParserDeleter {
    void operator()(XML_ParserStruct* parser) const;
  };
  template <class Handler>
  void guarded(Handler handler);
  /// The attribute behind the given one, or behind the tag's name.
  bool findAttribute(XmlAttribute& attribute);

  std::string_view packet_;
  std::unique_ptr<XML_ParserStruct, ParserDeleter> parser_;
  int depth_ = 0;
  bool isRefused_ = false;
};

}  // namespace FrameworkUtility::detail
