#pragma once

#include <framework_utility/platform/foundation/files/byte_source.h>
#include <framework_utility/platform/imageio/formats/row_reader.h>

#include <memory>

namespace FrameworkUtility::detail {

/// Grey, RGB with a skipped fourth byte, or CMYK with 255 as full ink, each of 8 bits a component;
/// 12 bits are not read. Reduced by eighths where a smaller picture is wanted. Nothing of the whole
/// picture is held but for the coefficients of files of several scans.
///
/// Damaged or cut pixels end the rows. A missing end marker alone does not where the file has one
/// scan, for then every row is there; where it has several, nothing else tells that none is lost.
std::unique_ptr<RowReader> jpegRows(const ByteSource& source, const RowRequest& request);

}  // namespace FrameworkUtility::detail
