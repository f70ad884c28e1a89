#pragma once

#include <framework_utility/platform/foundation/value.h>

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace FrameworkUtility::detail {

// The phone's own note: "Apple iOS", a version, a byte order, and one directory whose offsets count
// from the start of the note, so that it may stand anywhere.

/// The note under decimal keys ("17"). Absent for the note of another maker, and for one whose
/// directory is damaged.
std::optional<Dictionary> readMakerNote(std::span<const std::byte> note);

/// The note for these entries; one that is absent to `readMakerNote` is replaced by a new one. What
/// reads as before keeps its bytes, and so does what does not read at all. Empty when no entry
/// remains.
std::vector<std::byte> mergeMakerNote(std::span<const std::byte> note, const Dictionary& entries);

}  // namespace FrameworkUtility::detail
