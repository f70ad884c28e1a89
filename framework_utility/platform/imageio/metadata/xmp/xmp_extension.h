#pragma once

#include <framework_utility/platform/foundation/values/data.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace FrameworkUtility::detail {

// A packet may be continued by another one, its extension, which it asks for by a name: the
// property xmpNote:HasExtendedXMP (XMP specification part 3, 1.1.3.1). UTF-8 only.

/// The name that the packet asks for; empty when it asks for none.
std::string xmpExtensionName(const Data& packet);
/// The packet with this name, or none for an empty one. Absent when there is no place for it.
std::optional<Data> withXmpExtensionName(const Data& packet, std::string_view name);

/// One packet that says what both say, in one rdf:RDF. `packet` itself where either cannot be
/// parsed, or where declarations of namespaces would make much more of it than both have.
Data joinedXmp(const Data& packet, const Data& extension);

struct XmpParts {
  Data packet;
  Data extension;
};
/// Moves the longest properties to an extension, as many as it takes for the packet to have no more
/// than `limit` bytes. Absent when that cannot be.
std::optional<XmpParts> splitXmp(const Data& packet, std::size_t limit);

}  // namespace FrameworkUtility::detail
