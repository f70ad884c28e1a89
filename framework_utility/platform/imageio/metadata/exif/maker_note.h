#pragma once

#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/imageio/metadata/values/metadata_budget.h>

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace FrameworkUtility::detail {

// The phone's own note: "Apple iOS", a version, a byte order, and one directory whose offsets count
// from the start of the note, so that it may stand anywhere.

/// Whether it is such a note, and whole.
bool isMakerNote(std::span<const std::byte> note);

/// The note under decimal keys ("17"). Absent for the note of another maker, and for one whose
/// directory is damaged.
std::optional<Dictionary> readMakerNote(std::span<const std::byte> note, MetadataBudget& budget);

/// The note for these entries; one that is absent to `readMakerNote` is replaced by a new one. What
/// is as in `before`, which the note reads as, keeps its bytes, and so does what does not read.
/// Empty when no entry remains.
std::vector<std::byte> mergeMakerNote(std::span<const std::byte> note, const Dictionary& before,
                                      const Dictionary& entries);

}  // namespace FrameworkUtility::detail
