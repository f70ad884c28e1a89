#pragma once

#include <csetjmp>
#include <cstdio>

// libjpeg's header needs <cstdio> before it.
#include <jpeglib.h>

namespace FrameworkUtility::detail {

/// libjpeg's error handler: an error, and a warning that means lost pixels, goes back to
/// `jpegSucceeds`. It never prints.
struct JpegErrors : jpeg_error_mgr {
  JpegErrors();

  std::jmp_buf returnPoint;
};

/// Runs `work`, which calls libjpeg on a structure with these errors; false when libjpeg gave up.
/// The way out destroys nothing: whatever `work` creates must need no destruction.
template <class Work>
bool jpegSucceeds(JpegErrors& errors, const Work& work) {
  if (setjmp(errors.returnPoint) != 0) return false;
  work();
  return true;
}

}  // namespace FrameworkUtility::detail
