#include <framework_utility/platform/imageio/formats/jpeg/jpeg_errors.h>

#include <jerror.h>

namespace FrameworkUtility::detail {

namespace {

[[noreturn]] void escape(j_common_ptr info) {
  std::longjmp(static_cast<JpegErrors*>(info->err)->returnPoint, 1);
}

/// `level` is negative for a warning. Stray bytes between segments and unknown numbers in
/// application segments do no harm; every other warning is about pixels.
void escapeFromDamage(j_common_ptr info, int level) {
  const int code = info->err->msg_code;
  if (level < 0 && code != JWRN_EXTRANEOUS_DATA && code != JWRN_ADOBE_XFORM &&
      code != JWRN_JFIF_MAJOR) {
    escape(info);
  }
}

void printNothing(j_common_ptr) {}

}  // namespace

JpegErrors::JpegErrors() {
  jpeg_std_error(this);
  error_exit = escape;
  emit_message = escapeFromDamage;
  output_message = printNothing;
}

}  // namespace FrameworkUtility::detail
