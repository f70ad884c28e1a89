#pragma once

#include <framework_utility/platform/imageio/metadata/values/metadata_budget.h>
#include <framework_utility/platform/imageio/metadata/xmp/xml_walk.h>
#include <framework_utility/platform/imageio/metadata/xmp/xmp_mapping.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace FrameworkUtility::detail {

inline constexpr std::string_view rdfRoot = "http://www.w3.org/1999/02/22-rdf-syntax-ns#|RDF";
inline constexpr std::string_view rdfDescription =
    "http://www.w3.org/1999/02/22-rdf-syntax-ns#|Description";

/// A member of an rdf:Seq, rdf:Bag or rdf:Alt.
struct XmpItem {
  std::string text;
  bool isDefaultLanguage = false;
  TextRange element{};  ///< With its tags.
  TextRange content{};  ///< Between its tags.
};

/// A property of the picture that is in the tables, with the places where it stands.
struct XmpProperty {
  const XmpMapping* mapping = nullptr;
  std::string text{};            ///< Of a property without items.
  std::vector<XmpItem> items{};  ///< Empty unless it is an array.
  TextRange whole{};    ///< What removing it takes away: the white space before it goes too.
  TextRange content{};  ///< Between its tags or quotes.
  /// Whether other text may stand at `content` or in the items: it is no structure, and has tags of
  /// its own to write between.
  bool isEditable = true;
  /// Its texts did not fit in the budget: all are empty.
  bool isLeftOut = false;

  /// The items' texts, or the one text.
  std::vector<std::string> texts() const;
  /// The item of the default language, else the first; null without items.
  const XmpItem* defaultItem() const;
};

inline constexpr std::size_t largestXmpPacket = std::size_t{8} << 20;

/// The properties of the tables in a UTF-8 packet, in its order: those at the top of an
/// rdf:Description, as attributes and as elements. Absent for a packet that cannot be walked over
/// or has more than `largestXmpPacket` bytes or 65,536 properties and items.
std::optional<std::vector<XmpProperty>> parseXmpPacket(std::string_view packet,
                                                       MetadataBudget& budget);

}  // namespace FrameworkUtility::detail
