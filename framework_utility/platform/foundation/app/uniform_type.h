#pragma once

#include <framework_utility/platform/foundation/app/uniform_type_table.h>
#include <framework_utility/platform/foundation/values/description.h>

#include <concepts>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace FrameworkUtility {

namespace detail {

template <class T>
concept TypeText = std::convertible_to<const T&, std::string_view>;

/// Looked at, for its constructor's exception specification, as soon as a text is to become a type
/// by itself; an optional asks for that before it would construct one.
template <class T>
struct TextAsType {
  static_assert(!TypeText<T>,
                "a text is not a UTType: write UTTypeJPEG or UTType{\"public.jpeg\"} for a "
                "declared type, UTType::typeWithIdentifier(text) for any other");
  static constexpr bool isNothrow = true;
};

/// The same: of two constructors the compiler takes the one that asks for more.
template <class T>
concept DeclaredTypeText = TypeText<T> && requires {
  sizeof(T);
};

}  // namespace detail

/// What kind of file or data something is. Declared types are known by name; a dynamic type stands
/// for an extension that no declared type has.
///
/// Thread: any.
class UTType {
 public:
  /// A declared type; a name that is not declared does not compile. For a name that is known only
  /// when the program runs there is `typeWithIdentifier`.
  template <detail::DeclaredTypeText T>
  explicit consteval UTType(const T& declared) : UTType(rowOf(declared)) {}
  /// A text given where a type is wanted does not compile, and the message says what to write.
  template <detail::TypeText T>
  UTType(const T&) noexcept(detail::TextAsType<T>::isNothrow);
  UTType(const UTType&) = default;  // and no move, which would leave a dynamic type without a name
  UTType& operator=(const UTType&) = default;

  /// Absent for a name that is neither declared nor that of a dynamic type with an extension.
  /// Selector: typeWithIdentifier:
  static std::optional<UTType> typeWithIdentifier(std::string_view identifier);
  /// The type for an extension, in any case, that conforms to `supertype`; a dynamic one when none
  /// is declared; absent for an extension that is not valid.
  /// Selector: typeWithFilenameExtension:conformingToType:
  static std::optional<UTType> typeWithFilenameExtension(std::string_view extension,
                                                         const UTType& supertype);

  std::string_view identifier() const;
  bool isDeclared() const { return !isDynamic(); }
  bool isDynamic() const { return dynamic_ != nullptr; }
  /// Without the full stop. Absent for kinds of files, such as `UTTypeImage`.
  std::optional<std::string> preferredFilenameExtension() const;
  /// Every type conforms to itself; a dynamic one to the supertype that it was asked with as well.
  /// Selector: conformsToType:
  bool conformsToType(const UTType& other) const;

  std::string description() const { return std::string(identifier()); }
  friend bool operator==(const UTType& a, const UTType& b) {
    return a.identifier() == b.identifier();
  }

 private:
  struct Dynamic;
  constexpr explicit UTType(const detail::DeclaredType& declared) : declared_(&declared) {}
  static consteval const detail::DeclaredType& rowOf(std::string_view identifier);
  /// The dynamic type for an extension in lower case.
  UTType(const std::string& extension, const detail::DeclaredType* supertype);

  const detail::DeclaredType* declared_;  // null for a dynamic type
  std::shared_ptr<const Dynamic> dynamic_;
};

/// "photo.jpeg" of "photo" and JPEG, "photo.JPG" unchanged: the preferred extension is added unless
/// the name ends in one of the type already. A type without extensions leaves the name as it is.
/// Selector: stringByAppendingPathExtensionForType:
std::string appendingPathExtensionForType(std::string_view name, const UTType& type);

// Implementation details

consteval const detail::DeclaredType& UTType::rowOf(std::string_view identifier) {
  const std::size_t row = detail::declaredTypeRow(identifier);
  // Not a constant expression, so the compiler stops here.
  if (row == detail::declaredTypeCount) throw "no type of this name is declared";
  return detail::declaredTypes[row];
}

inline constinit const UTType UTTypeData{"public.data"};
inline constinit const UTType UTTypePackage{"com.apple.package"};
inline constinit const UTType UTTypeImage{"public.image"};
inline constinit const UTType UTTypeJPEG{"public.jpeg"};
inline constinit const UTType UTTypePNG{"public.png"};
inline constinit const UTType UTTypeGIF{"com.compuserve.gif"};
inline constinit const UTType UTTypeTIFF{"public.tiff"};
inline constinit const UTType UTTypeHEIC{"public.heic"};
inline constinit const UTType UTTypeWebP{"org.webmproject.webp"};

}  // namespace FrameworkUtility
