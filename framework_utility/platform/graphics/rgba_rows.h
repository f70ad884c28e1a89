#pragma once

#include <framework_utility/platform/graphics/cg_image.h>
#include <framework_utility/platform/graphics/pixel_buffer.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace FrameworkUtility::detail {

enum class AlphaForm { straight, premultiplied };

/// Whether pixels hold a component that says how much they cover; a skipped one says nothing.
bool carriesAlpha(CGImageAlphaInfo info);
bool isPremultiplied(CGImageAlphaInfo info);

/// Converts rows of any bitmap to red, green, blue, alpha with 8 or 16 bits each, the latter in the
/// machine's byte order.
///
/// Components are used as they are, without a change of colour space. Grey becomes three equal
/// components, CMYK the light that its inks leave, (1 - ink) (1 - black), and an alpha mask black.
/// A bitmap without alpha is opaque.
class RGBAConverter {
 public:
  /// `space` is absent for an alpha mask. Absent for Lab, whose components are no light.
  static std::optional<RGBAConverter> create(const CGImageLayout& layout,
                                             const std::optional<CGColorSpace>& space,
                                             AlphaForm form);

  /// Writes 4 components a pixel.
  void convert(const std::uint8_t* stored, std::uint8_t* row) const;
  /// The same with 16 bits each.
  void convert(const std::uint8_t* stored, std::uint16_t* row) const;

 private:
  static constexpr std::size_t missing = ~std::size_t{0};

  RGBAConverter(const CGImageLayout& layout, AlphaForm form) : layout_(layout), form_(form) {}

  template <class Component>
  void convertTo(const std::uint8_t* source, Component* row) const;

  CGImageLayout layout_;
  AlphaForm form_;
  // Where a pixel's components begin, in bytes. Of CMYK the first three are the inks beside black;
  // all three are the same for grey, and missing in an alpha mask.
  std::array<std::size_t, 3> color_{missing, missing, missing};
  std::size_t black_ = missing;
  std::size_t alpha_ = missing;
};

/// A bitmap's rows, converted.
///
///     const std::optional<RGBARows> rows = RGBARows::of(image, AlphaForm::premultiplied);
///     for (std::size_t y = 0; rows && y < image.height(); ++y) rows->read(y, buffer.row(y));
class RGBARows {
 public:
  /// Absent for a Lab bitmap.
  static std::optional<RGBARows> of(const CGImage& image, AlphaForm form);

  void read(std::size_t y, std::uint8_t* row) const { converter_.convert(stored(y), row); }
  void read(std::size_t y, std::uint16_t* row) const { converter_.convert(stored(y), row); }

 private:
  RGBARows(const CGImage& image, const RGBAConverter& converter)
      : image_(image), converter_(converter) {}

  const std::uint8_t* stored(std::size_t y) const {
    return reinterpret_cast<const std::uint8_t*>(image_.pixels().data()) +
           y * image_.layout().bytesPerRow;
  }

  CGImage image_;
  RGBAConverter converter_;
};

/// A whole bitmap as rows of 8-bit red, green, blue, alpha without padding; absent for Lab and when
/// memory is short.
std::optional<PixelBuffer> rgbaPixels(const CGImage& image, AlphaForm form);

// On rows of red, green, blue, alpha. Exact: each component is the nearest to v * a / max, and
// back.
void premultiply(std::uint8_t* row, std::size_t pixels);
void premultiply(std::uint16_t* row, std::size_t pixels);
void unpremultiply(std::uint8_t* row, std::size_t pixels);
void unpremultiply(std::uint16_t* row, std::size_t pixels);

/// Lays a premultiplied row over another. No component of `source` may be above its alpha.
void blendOver(const std::uint8_t* source, std::uint8_t* row, std::size_t pixels);

}  // namespace FrameworkUtility::detail
