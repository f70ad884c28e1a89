#pragma once

#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/imageio/metadata/values/metadata_budget.h>

#include <cstddef>
#include <span>
#include <vector>

namespace FrameworkUtility::detail {

// The datasets of IPTC-NAA IIM 4.2 under the platform's names, all as text.

/// The entries of "{IPTC}". A text is UTF-8 where it is valid UTF-8, whether or not the record says
/// so (many writers forget to), and ISO 8859-1 elsewhere.
Dictionary readIptcRecord(std::span<const std::byte> record, MetadataBudget& budget);

/// The record with the entries that differ from what it reads as with this budget. Datasets that
/// are unchanged or unknown keep their bytes and their order. The first text beyond ASCII turns the
/// record to UTF-8 as a whole and marks it so. Empty when nothing but the envelope would be left.
std::vector<std::byte> mergeIptcRecord(std::span<const std::byte> record, const Dictionary& entries,
                                       MetadataBudget& budget);

}  // namespace FrameworkUtility::detail
