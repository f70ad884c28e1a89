#pragma once

#include <framework_utility/platform/foundation/files/byte_source.h>
#include <framework_utility/platform/imageio/formats/row_reader.h>

#include <memory>

namespace FrameworkUtility::detail {

/// RGB of 8 bits with straight alpha, where bit fields name one, or a skipped fourth byte. Palettes
/// are expanded; what names no colour of a short one is black.
///
/// A file that is too short for all rows has none; that the last one's padding is missing does not
/// count. Where runs skip pixels or end before the picture, the first colour stands, as with most
/// readers. Some writers let them go on into the padding that the row would have without runs,
/// which is harmless; runs and jumps beyond it, or out of the picture, are damage.
std::unique_ptr<RowReader> bmpRows(const ByteSource& source, const RowRequest& request);

}  // namespace FrameworkUtility::detail
