#pragma once

#include <framework_utility/platform/foundation/archives/keyed_archiver.h>
#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace FrameworkUtility::testing {

// Classes of a sketching app, and what tests of archives do all the time.

/// A value type with numbers inline.
struct Stroke {
  float width = 1;
  std::int64_t count = 0;

  static std::string_view className() { return "Sketch.Stroke"; }
  static bool supportsSecureCoding() { return isSecure; }
  static std::optional<Stroke> withCoder(NSKeyedUnarchiver& coder) {
    if (!coder.containsValueForKey("width")) return std::nullopt;
    return Stroke{coder.decodeFloatForKey("width"), coder.decodeInt64ForKey("$count")};
  }
  void encodeWithCoder(NSKeyedArchiver& coder) const {
    coder.encodeFloat(width, "width");
    coder.encodeInt64(count, "$count");
  }

  static inline bool isSecure = true;
};

/// A class of objects that refer to each other, and one below it.
class Node : public NSObject, public NSCoding {
 public:
  std::vector<std::shared_ptr<Node>> next;

  std::string_view className() const override { return "Sketch.Node"; }
  void encodeWithCoder(NSKeyedArchiver& coder) const override {
    std::vector<Value> values(next.begin(), next.end());
    std::vector<const Value*> objects;
    for (const Value& value : values) objects.push_back(&value);
    coder.encodeObjects(objects, "next");
  }

  template <class Kind>
  static std::optional<Value> withCoder(NSKeyedUnarchiver& coder) {
    ++made;
    const auto node = std::make_shared<Kind>();
    for (const Value& value : coder.decodeObjectsForKey("next").value_or(Array())) {
      const auto* object = value.as<std::shared_ptr<NSObject>>();
      node->next.push_back(object ? std::dynamic_pointer_cast<Node>(*object) : nullptr);
    }
    return Value(node);
  }

  static inline int made = 0;
};

class Leaf final : public Node {
 public:
  std::string_view className() const override { return "Sketch.Leaf"; }
};

inline const bool nodesAreKnown =
    registerCodingClass({"Sketch.Node", {}, Node::withCoder<Node>, [] { return true; }}) &&
    registerCodingClass(
        {"Sketch.Leaf", {"Sketch.Node"}, Node::withCoder<Leaf>, [] { return true; }});

inline std::shared_ptr<Node> nodeIn(const std::optional<Value>& value) {
  const auto* object = value ? value->as<std::shared_ptr<NSObject>>() : nullptr;
  return object ? std::dynamic_pointer_cast<Node>(*object) : nullptr;
}

inline std::optional<Data> archived(const Value& root, Error* error = nullptr) {
  return NSKeyedArchiver::archivedDataWithRootObject(root, SecureCoding::required, error);
}

inline std::optional<Value> unarchived(const Data& data, Error* error = nullptr) {
  return NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(data, error);
}

inline std::optional<Value> unarchived(const ClassNames& classes, const Data& data,
                                       Error* error = nullptr) {
  return NSKeyedUnarchiver::unarchivedObjectOfClasses(classes, data, error);
}

inline std::string reasonOf(const Error& error) {
  const auto* reason = error.userInfo().get<std::string>(NSDebugDescriptionErrorKey);
  return reason ? *reason : "";
}

inline Value list(Array elements) { return Value(std::move(elements)); }

}  // namespace FrameworkUtility::testing
