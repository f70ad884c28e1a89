#include <framework_utility/platform/foundation/object.h>

namespace FrameworkUtility {

NSObject::~NSObject() = default;

}  // namespace FrameworkUtility
