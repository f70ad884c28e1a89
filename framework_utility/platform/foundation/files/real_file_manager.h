#pragma once

#include <framework_utility/platform/foundation/files/files.h>

namespace FrameworkUtility::detail {

/// The system's file manager. It lives to the very end: other objects' destructors may still save.
FileManager& realFileManager();

}  // namespace FrameworkUtility::detail
