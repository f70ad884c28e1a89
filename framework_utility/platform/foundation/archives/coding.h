#pragma once

#include <framework_utility/platform/foundation/values/object.h>
#include <framework_utility/platform/foundation/values/value.h>

#include <concepts>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace FrameworkUtility {

class NSKeyedArchiver;
class NSKeyedUnarchiver;

// What a class does so that archives can hold its objects. A value type such as a colour says how
// it is written and read, and stands in archives boxed:
//
//     class Stroke {
//      public:
//       static std::string_view className() { return "Sketch.Stroke"; }
//       static bool supportsSecureCoding() { return true; }
//       static std::optional<Stroke> withCoder(NSKeyedUnarchiver& coder);
//       void encodeWithCoder(NSKeyedArchiver& coder) const;
//     };
//
//     auto data = NSKeyedArchiver::archivedDataWithRootObject(boxed(s), SecureCoding::required);
//     auto root = NSKeyedUnarchiver::unarchivedObjectOfClasses({"Sketch.Stroke"}, *data);
//     const Stroke* again = root ? unboxed<Stroke>(*root) : nullptr;
//
// A class of objects with identity takes the role `NSCoding` and calls `registerCodingClass`.

/// The names of classes that a secure decoder allows, with their subclasses.
using ClassNames = std::vector<std::string_view>;

/// The role of an object that archives can hold; its class must be registered too.
class NSCoding {
 public:
  virtual ~NSCoding();

  /// Writes the object's parts under their keys.
  /// Selector: encodeWithCoder:
  virtual void encodeWithCoder(NSKeyedArchiver& coder) const = 0;
};

/// A class whose objects archives can hold. The texts are constants.
struct CodingClass {
  /// As archives write it, and as `NSObject::className()` says it: "Sketch.Stroke" for a class of
  /// an app, its module in front. Archives that say "_TtC6Sketch6Stroke" or "Stroke" are read too.
  std::string_view name;
  /// The names of its superclasses, the nearest first, without NSObject.
  ClassNames superclasses;
  /// The object that the coder stands at; absent when it holds too little.
  /// Selector: initWithCoder:
  std::optional<Value> (*withCoder)(NSKeyedUnarchiver& coder);
  /// Whether coders that require secure coding accept the class now. Asked each time.
  /// Selector: supportsSecureCoding
  bool (*supportsSecureCoding)();
};

/// Lets archives hold objects of this class. A name that is known already stays what it is. True,
/// so that a constant can be made of it. Thread: any.
bool registerCodingClass(const CodingClass& codingClass);

/// A value type that archives can hold.
template <class T>
concept CodableValue = requires(const T& value, NSKeyedArchiver& archiver,
                                NSKeyedUnarchiver& unarchiver) {
  { T::className() } -> std::same_as<std::string_view>;
  { T::supportsSecureCoding() } -> std::same_as<bool>;
  { T::withCoder(unarchiver) } -> std::convertible_to<std::optional<T>>;
  value.encodeWithCoder(archiver);
};

/// An object that is one value: what archives and lists hold of a value type.
template <CodableValue T>
class Boxed final : public NSObject, public NSCoding {
 public:
  explicit Boxed(T value) : value_(std::move(value)) { static_cast<void>(isRegistered); }

  const T& value() const { return value_; }

  std::string_view className() const override { return T::className(); }
  void encodeWithCoder(NSKeyedArchiver& coder) const override { value_.encodeWithCoder(coder); }

  /// Before `main`, in every program that mentions it.
  static inline const bool isRegistered =
      registerCodingClass({T::className(),
                           {},
                           [](NSKeyedUnarchiver& coder) -> std::optional<Value> {
                             std::optional<T> value = T::withCoder(coder);
                             if (!value) return std::nullopt;
                             return Value(std::make_shared<Boxed>(*std::move(value)));
                           },
                           &T::supportsSecureCoding});

 private:
  T value_;
};

template <CodableValue T>
Value boxed(T value) {
  return Value(std::make_shared<Boxed<T>>(std::move(value)));
}

/// The value in a box; null when there is something else. Good as long as `value` is.
template <CodableValue T>
const T* unboxed(const Value& value) {
  static_cast<void>(Boxed<T>::isRegistered);
  const auto* object = value.as<std::shared_ptr<NSObject>>();
  const auto* box = object ? dynamic_cast<const Boxed<T>*>(object->get()) : nullptr;
  return box ? &box->value() : nullptr;
}

}  // namespace FrameworkUtility
