#pragma once

#include <framework_utility/platform/foundation/files/byte_source.h>
#include <framework_utility/platform/imageio/formats/row_reader.h>

#include <memory>

namespace FrameworkUtility::detail {

/// All that the file has: 8 or 16 bits, grey, grey and alpha, or RGB with alpha or a skipped fourth
/// component. Rows of an interlaced picture arrive in seven passes, so such a one comes whole.
std::unique_ptr<RowReader> pngRows(const ByteSource& source, const RowRequest& request);

}  // namespace FrameworkUtility::detail
