#include <framework_utility/platform/foundation/values/object.h>

namespace FrameworkUtility {

NSObject::~NSObject() = default;

}  // namespace FrameworkUtility
