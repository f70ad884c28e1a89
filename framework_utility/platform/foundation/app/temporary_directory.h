#pragma once

#include <string>

namespace FrameworkUtility {

/// The app's own folder for passing things, ending in "/": owned by the user, mode 0700, never a
/// link. It stands in `$TMPDIR`, else in "/tmp", and is made anew when it is gone. Thread: any.
/// Selector: NSTemporaryDirectory
std::string temporaryDirectory();

}  // namespace FrameworkUtility
