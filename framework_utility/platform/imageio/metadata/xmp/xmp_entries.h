#pragma once

#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/imageio/metadata/xmp/xmp_mapping.h>

#include <string>
#include <vector>

namespace FrameworkUtility::detail {

/// The entries of `mapping.dictionary` for a property's texts; empty when the texts are not of its
/// form. A property that is no list has one text.
Dictionary xmpEntries(const XmpMapping& mapping, std::vector<std::string> texts);

/// The other way: the texts of a property for the entries that `dictionary` holds; empty when they
/// are missing or cannot be said in XMP.
std::vector<std::string> xmpTexts(const XmpMapping& mapping, const Dictionary& dictionary);

}  // namespace FrameworkUtility::detail
