#include <framework_utility/platform/foundation/archives/keyed_archiver.h>
#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

using namespace FrameworkUtility;

namespace {

/// Reads every kind of part.
class Node final : public NSObject, public NSCoding {
 public:
  std::string_view className() const override { return "Fuzz.Node"; }

  void encodeWithCoder(NSKeyedArchiver& coder) const override {
    std::vector<const Value*> objects;
    for (const Value& value : next_) objects.push_back(&value);
    coder.encodeObjects(objects, "next");
    coder.encodeInt64(count_, "count");
    coder.encodeFloat(ratio_, "ratio");
    coder.encodeBool(isSet_, "isSet");
    coder.encodeObject(name_, "name");
  }

  static std::optional<Value> withCoder(NSKeyedUnarchiver& coder) {
    const auto node = std::make_shared<Node>();
    node->next_ = coder.decodeObjectsForKey("next").value_or(Array());
    node->count_ = coder.decodeInt64ForKey("count") + coder.decodeInt32ForKey("small");
    node->ratio_ = coder.decodeFloatForKey("ratio");
    node->isSet_ = coder.decodeBoolForKey("isSet");
    node->name_ = coder.decodeObjectOfClasses({"NSString"}, "name");
    if (coder.decodeBytesForKey("bytes") && coder.decodeInlineValueForKey("absent")) {
      return std::nullopt;
    }
    return Value(node);
  }

 private:
  Array next_;
  std::int64_t count_ = 0;
  float ratio_ = 0;
  bool isSet_ = false;
  std::optional<Value> name_;
};

const bool isKnown = registerCodingClass({"Fuzz.Node", {}, Node::withCoder, [] { return true; }});

/// What is read can be written, and what is written read.
void goRound(const std::optional<Value>& value) {
  if (!value) return;
  const ArchiveLimits wide{.objects = 10'000'000, .depth = 512, .expansion = 1'000};
  NSKeyedArchiver archiver(SecureCoding::required, wide);
  archiver.encodeObject(value, NSKeyedArchiveRootObjectKey);
  const std::optional<Data> data = archiver.encodedData();
  if (!data) std::abort();
  NSKeyedUnarchiver unarchiver(*data, wide);
  if (!unarchiver.decodeTopLevelObjectForKey(NSKeyedArchiveRootObjectKey)) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::byte> bytes = std::as_bytes(std::span(data, size));
  goRound(NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(bytes));
  goRound(NSKeyedUnarchiver::unarchivedObjectOfClasses(
      {"NSArray", "NSDictionary", "NSString", "NSURL", "Fuzz.Node"}, bytes));
  return 0;
}
