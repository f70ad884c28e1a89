#pragma once

#include <framework_utility/platform/foundation/archives/coding_registry.h>
#include <framework_utility/platform/foundation/archives/keyed_archiver.h>
#include <framework_utility/platform/foundation/values/value.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace FrameworkUtility::detail {

/// A keyed archive as a property list, in which nothing has been decoded. Moved, never copied: the
/// others point into the list.
struct ArchiveContents {
  Value list;
  std::span<const Value> objects;
  const Dictionary* top = nullptr;
};

/// Absent, with the reason in `problem`, for bytes that are no archive or exceed the limits.
std::optional<ArchiveContents> archiveContents(std::span<const std::byte> data,
                                               const ArchiveLimits& limits, std::string& problem);

/// By the name in a class's record, else by the names that the record hints at, else by those of
/// the superclasses; null when none is known.
const CodingClass* codingClassOfRecord(const Dictionary& record);

}  // namespace FrameworkUtility::detail
