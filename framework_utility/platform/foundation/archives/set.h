#pragma once

#include <framework_utility/platform/foundation/archives/coding.h>
#include <framework_utility/platform/foundation/values/object.h>
#include <framework_utility/platform/foundation/values/value.h>

#include <string_view>
#include <utility>

namespace FrameworkUtility {

/// Objects without an order, as archives hold them. It keeps them as it is given them, equal ones
/// too.
///
/// Thread: any.
class NSSet final : public NSObject, public NSCoding {
 public:
  /// Selector: initWithArray:
  explicit NSSet(Array objects) : objects_(std::move(objects)) {}

  const Array& allObjects() const& { return objects_; }  ///< Selector: allObjects
  Array allObjects() const&& { return objects_; }

  std::string_view className() const override;
  void encodeWithCoder(NSKeyedArchiver& coder) const override;

 private:
  Array objects_;
};

}  // namespace FrameworkUtility
