#include <framework_utility/platform/foundation/app/uniform_type.h>

#include <framework_utility/platform/foundation/values/path.h>

#include <cstddef>
#include <cstdint>

namespace FrameworkUtility {

struct UTType::Dynamic {
  std::string identifier;
  std::string extension;                  // lower case
  const detail::DeclaredType* supertype;  // null for none
};

namespace {

constexpr std::string_view dynamicPrefix = "dyn.a";
constexpr std::string_view dynamicAlphabet = "abcdefghkmnpqrstuvwxyz0123456789";
/// In a dynamic identifier "0" is the key of the supertype, "1" the one of the file name extension,
/// and "6" stands for the commonest supertype.
constexpr std::string_view dataAbbreviation = "6";

constexpr bool isInOrder(std::size_t row) {
  const detail::DeclaredType& type = detail::declaredTypes[row];
  return detail::declaredTypeRow(type.identifier) == row &&
         !detail::anyWord(type.conformsTo, [row](std::string_view parent) {
           return detail::declaredTypeRow(parent) >= row;
         });
}

constexpr bool isTableInOrder() {
  for (std::size_t row = 0; row < detail::declaredTypeCount; ++row) {
    if (!isInOrder(row)) return false;
  }
  return true;
}

static_assert(isTableInOrder(), "Names are unique; parents stand above, so there is no cycle.");

const detail::DeclaredType* declaredType(std::string_view identifier) {
  const std::size_t row = detail::declaredTypeRow(identifier);
  return row < detail::declaredTypeCount ? &detail::declaredTypes[row] : nullptr;
}

std::string asciiLowercase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

bool conforms(const detail::DeclaredType& type, const detail::DeclaredType& other) {
  return &type == &other || detail::anyWord(type.conformsTo, [&](std::string_view parent) {
    return conforms(*declaredType(parent), other);
  });
}

bool hasExtension(const detail::DeclaredType& type, std::string_view lowercase) {
  return detail::anyWord(type.extensions, [&](std::string_view word) { return word == lowercase; });
}

/// Base 32 over the alphabet above, most significant bits first, zeros at the end.
std::string encoded(std::string_view text) {
  std::string digits;
  std::uint32_t bits = 0;
  int count = 0;
  for (const char c : text) {
    bits = bits << 8 | static_cast<unsigned char>(c);
    for (count += 8; count >= 5; count -= 5) digits += dynamicAlphabet[bits >> (count - 5) & 31];
  }
  if (count > 0) digits += dynamicAlphabet[bits << (5 - count) & 31];
  return digits;
}

std::optional<std::string> decoded(std::string_view digits) {
  std::string text;
  std::uint32_t bits = 0;
  int count = 0;
  for (const char c : digits) {
    const std::size_t value = dynamicAlphabet.find(c);
    if (value == std::string_view::npos) return std::nullopt;
    bits = bits << 5 | static_cast<std::uint32_t>(value);
    if ((count += 5) >= 8) text += static_cast<char>(bits >> (count -= 8) & 255);
  }
  return text;
}

std::string dynamicIdentifier(const detail::DeclaredType* supertype, std::string_view extension) {
  std::string text;
  if (supertype) {
    const bool isData = supertype->identifier == UTTypeData.identifier();
    text.append("?0=").append(isData ? dataAbbreviation : supertype->identifier).append(":");
  }
  return std::string(dynamicPrefix) + encoded(text.append("1=").append(extension));
}

}  // namespace

UTType::UTType(const std::string& extension, const detail::DeclaredType* supertype)
    : declared_(nullptr),
      dynamic_(std::make_shared<const Dynamic>(
          Dynamic{dynamicIdentifier(supertype, extension), extension, supertype})) {}

std::optional<UTType> UTType::typeWithIdentifier(std::string_view identifier) {
  if (const detail::DeclaredType* declared = declaredType(identifier)) return UTType(*declared);
  if (!identifier.starts_with(dynamicPrefix)) return std::nullopt;
  const std::optional<std::string> text = decoded(identifier.substr(dynamicPrefix.size()));
  if (!text) return std::nullopt;

  std::string_view rest = *text;
  const detail::DeclaredType* supertype = nullptr;
  if (rest.starts_with("?0=")) {
    rest.remove_prefix(3);
    const std::string_view name = rest.substr(0, rest.find(':'));
    supertype = name == dataAbbreviation ? UTTypeData.declared_ : declaredType(name);
    if (!supertype || name.size() == rest.size()) return std::nullopt;
    rest.remove_prefix(name.size() + 1);
  }
  if (!rest.starts_with("1=")) return std::nullopt;
  const std::string extension = asciiLowercase(rest.substr(2));
  if (!paths::isValidPathExtension(extension)) return std::nullopt;
  UTType type(extension, supertype);
  // One spelling a type: other cases of the extension and other paddings are no identifiers.
  if (type.identifier() != identifier) return std::nullopt;
  return type;
}

std::optional<UTType> UTType::typeWithFilenameExtension(std::string_view extension,
                                                        const UTType& supertype) {
  if (!paths::isValidPathExtension(extension)) return std::nullopt;
  const std::string lowercase = asciiLowercase(extension);
  if (supertype.isDynamic()) {  // nothing else conforms to it
    if (lowercase == supertype.dynamic_->extension) return supertype;
    return std::nullopt;
  }
  for (const detail::DeclaredType& type : detail::declaredTypes) {
    if (hasExtension(type, lowercase) && conforms(type, *supertype.declared_)) return UTType(type);
  }
  return UTType(lowercase, supertype.declared_);
}

std::string_view UTType::identifier() const {
  return dynamic_ ? dynamic_->identifier : declared_->identifier;
}

std::optional<std::string> UTType::preferredFilenameExtension() const {
  if (dynamic_) return dynamic_->extension;
  const std::string_view first = declared_->extensions.substr(0, declared_->extensions.find(' '));
  if (first.empty()) return std::nullopt;
  return std::string(first);
}

bool UTType::conformsToType(const UTType& other) const {
  if (*this == other) return true;
  const detail::DeclaredType* declared = dynamic_ ? dynamic_->supertype : declared_;
  return declared && other.isDeclared() && conforms(*declared, *other.declared_);
}

std::string appendingPathExtensionForType(std::string_view name, const UTType& type) {
  const std::optional<std::string> preferred = type.preferredFilenameExtension();
  if (!preferred) return std::string(name);
  const std::optional<UTType> present =
      UTType::typeWithFilenameExtension(paths::pathExtension(name), type);
  if (present && (present->isDeclared() || *present == type)) return std::string(name);
  return paths::appendingPathExtension(name, *preferred);
}

}  // namespace FrameworkUtility
