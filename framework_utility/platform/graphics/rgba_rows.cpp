#include <framework_utility/platform/graphics/rgba_rows.h>

#include <framework_utility/platform/graphics/pixel_word.h>

#include <algorithm>
#include <limits>

namespace FrameworkUtility::detail {

namespace {

template <class Component>
inline constexpr std::uint32_t opaque = std::numeric_limits<Component>::max();

/// The nearest integer to a * b / max.
template <class Component>
constexpr std::uint32_t product(std::uint32_t a, std::uint32_t b) {
  constexpr int bits = std::numeric_limits<Component>::digits;
  const std::uint32_t t = a * b + (std::uint32_t{1} << (bits - 1));
  return (t + (t >> bits)) >> bits;
}

/// Two components at once, 16 bits apart, times alpha: product<std::uint8_t> of each.
std::uint32_t productOfPair(std::uint32_t pair, std::uint32_t alpha) {
  const std::uint32_t t = pair * alpha + 0x00800080;
  return (t + (t >> 8 & 0x00FF00FF)) >> 8 & 0x00FF00FF;
}

/// The nearest integer to v * max / alpha. Exact in a type that holds the dividend: a quotient that
/// is no integer is at least 1 / max away from one.
template <class Component, class Real>
std::int32_t quotient(std::int32_t v, std::int32_t alpha) {
  const std::int32_t half = alpha / 2;
  // A component above its alpha is brighter than white can be.
  const auto dividend =
      static_cast<Real>(std::min(v, alpha)) * static_cast<Real>(opaque<Component>) +
      static_cast<Real>(half);
  return static_cast<std::int32_t>(dividend / static_cast<Real>(std::max(alpha, 1)));
}

std::uint32_t byteAt(const std::uint8_t* p) { return *p; }
std::uint32_t bigAt(const std::uint8_t* p) { return std::uint32_t{p[0]} << 8 | p[1]; }
std::uint32_t littleAt(const std::uint8_t* p) { return std::uint32_t{p[1]} << 8 | p[0]; }

/// A component of `From` in the range of `To`, rounded to nearest.
template <class From, class To>
std::uint32_t inRangeOf(std::uint32_t v) {
  if constexpr (sizeof(From) == sizeof(To)) {
    return v;
  } else if constexpr (sizeof(To) == 2) {
    return v * 257;
  } else {
    return (v * 255 + 32895) >> 16;
  }
}

/// Calls `pixel` with a function that loads the component at a place of the pixel, in the range of
/// `To`, and with the four components to be written.
template <class From, auto load, class To, class Pixel>
void forEachPixel(const std::uint8_t* __restrict source, std::size_t bytesPerPixel,
                  To* __restrict row, std::size_t pixels, const Pixel& pixel) {
  for (std::size_t x = 0; x < pixels; ++x, source += bytesPerPixel, row += 4) {
    pixel([source](std::size_t place) { return inRangeOf<From, To>(load(source + place)); }, row);
  }
}

/// Four bytes a pixel into four bytes a pixel, `places[i]` being where the source holds component
/// i.
void permuteRow(const std::uint8_t* __restrict source, const std::array<std::size_t, 4>& places,
                bool isOpaque, std::uint8_t* __restrict row, std::size_t pixels) {
  const std::array<int, 4> from{shiftOf(places[0]), shiftOf(places[1]), shiftOf(places[2]),
                                shiftOf(places[3])};
  const std::array<int, 4> to{shiftOf(0), shiftOf(1), shiftOf(2), shiftOf(3)};
  const std::uint32_t cover = isOpaque ? std::uint32_t{255} << to[3] : 0;
  for (std::size_t x = 0; x < pixels; ++x) {
    const std::uint32_t in = wordAt(source + 4 * x);
    const std::uint32_t out = (in >> from[0] & 255) << to[0] | (in >> from[1] & 255) << to[1] |
                              (in >> from[2] & 255) << to[2] | (in >> from[3] & 255) << to[3] |
                              cover;
    setWord(row + 4 * x, out);
  }
}

}  // namespace

bool carriesAlpha(CGImageAlphaInfo info) {
  switch (info) {
    case CGImageAlphaInfo::premultipliedLast:
    case CGImageAlphaInfo::premultipliedFirst:
    case CGImageAlphaInfo::last:
    case CGImageAlphaInfo::first:
    case CGImageAlphaInfo::alphaOnly:
      return true;
    default:
      return false;
  }
}

bool isPremultiplied(CGImageAlphaInfo info) {
  return info == CGImageAlphaInfo::premultipliedLast ||
         info == CGImageAlphaInfo::premultipliedFirst;
}

std::optional<RGBAConverter> RGBAConverter::create(const CGImageLayout& layout,
                                                   const std::optional<CGColorSpace>& space,
                                                   AlphaForm form) {
  const bool isFirst = layout.alphaInfo == CGImageAlphaInfo::premultipliedFirst ||
                       layout.alphaInfo == CGImageAlphaInfo::first ||
                       layout.alphaInfo == CGImageAlphaInfo::noneSkipFirst;
  const auto place = [&](std::size_t component) {
    return layout.byteOrder == CGImageByteOrder::little32
               ? 3 - component
               : component * (layout.bitsPerComponent / 8);
  };
  const std::size_t begin = isFirst ? 1 : 0;
  std::size_t colors = 0;

  RGBAConverter converter(layout, form);
  if (space) {
    colors = space->numberOfComponents();
    switch (space->model()) {
      case CGColorSpaceModel::monochrome:
        converter.color_.fill(place(begin));
        break;
      case CGColorSpaceModel::cmyk:
        converter.black_ = place(begin + 3);
        [[fallthrough]];
      case CGColorSpaceModel::rgb:
        converter.color_ = {place(begin), place(begin + 1), place(begin + 2)};
        break;
      default:
        return std::nullopt;
    }
  }
  if (carriesAlpha(layout.alphaInfo)) converter.alpha_ = place(isFirst ? 0 : colors);
  return converter;
}

template <class Component>
void RGBAConverter::convertTo(const std::uint8_t* source, Component* row) const {
  const std::size_t pixels = layout_.width;
  const std::size_t bytesPerPixel = layout_.bitsPerPixel / 8;

  const auto each = [&](const auto& pixel) {
    if (layout_.bitsPerComponent == 8) {
      forEachPixel<std::uint8_t, byteAt>(source, bytesPerPixel, row, pixels, pixel);
    } else if (layout_.byteOrder == CGImageByteOrder::little16) {
      forEachPixel<std::uint16_t, littleAt>(source, bytesPerPixel, row, pixels, pixel);
    } else {
      forEachPixel<std::uint16_t, bigAt>(source, bytesPerPixel, row, pixels, pixel);
    }
  };
  const auto alphaOf = [alpha = alpha_](const auto& load) {
    return static_cast<Component>(alpha == missing ? opaque<Component> : load(alpha));
  };

  if (black_ != missing) {
    each([&](const auto& load, Component* out) {
      const std::uint32_t light = opaque<Component> - load(black_);
      for (std::size_t c = 0; c < 3; ++c) {
        out[c] =
            static_cast<Component>(product<Component>(opaque<Component> - load(color_[c]), light));
      }
      out[3] = alphaOf(load);
    });
  } else if (color_[0] == missing) {
    each([&](const auto& load, Component* out) {
      std::fill_n(out, 3, Component{0});
      out[3] = alphaOf(load);
    });
  } else if (sizeof(Component) == 1 && bytesPerPixel == 4 && layout_.bitsPerComponent == 8) {
    // The fourth component, skipped or not, is at the one place that no colour has.
    const std::size_t fourth = 6 - color_[0] - color_[1] - color_[2];
    permuteRow(source, {color_[0], color_[1], color_[2], fourth}, alpha_ == missing,
               reinterpret_cast<std::uint8_t*>(row), pixels);
  } else {
    each([alphaOf, color = color_](const auto& load, Component* out) {
      for (std::size_t c = 0; c < 3; ++c) out[c] = static_cast<Component>(load(color[c]));
      out[3] = alphaOf(load);
    });
  }

  if (alpha_ == missing || color_[0] == missing) return;
  const bool premultiplied = isPremultiplied(layout_.alphaInfo);
  if (premultiplied && form_ == AlphaForm::straight) unpremultiply(row, pixels);
  if (!premultiplied && form_ == AlphaForm::premultiplied) premultiply(row, pixels);
}

void RGBAConverter::convert(const std::uint8_t* stored, std::uint8_t* row) const {
  convertTo(stored, row);
}

void RGBAConverter::convert(const std::uint8_t* stored, std::uint16_t* row) const {
  convertTo(stored, row);
}

std::optional<RGBARows> RGBARows::of(const CGImage& image, AlphaForm form) {
  const auto converter = RGBAConverter::create(image.layout(), image.colorSpace(), form);
  return converter ? std::optional(RGBARows(image, *converter)) : std::nullopt;
}

std::optional<PixelBuffer> rgbaPixels(const CGImage& image, AlphaForm form) {
  const std::optional<RGBARows> rows = RGBARows::of(image, form);
  if (!rows || image.width() > maximumPixelBytes) return std::nullopt;
  std::optional<PixelBuffer> pixels = PixelBuffer::allocate(image.height(), image.width() * 4);
  for (std::size_t y = 0; pixels && y < image.height(); ++y) rows->read(y, pixels->row(y));
  return pixels;
}

void premultiply(std::uint8_t* row, std::size_t pixels) {
  const int alphaShift = shiftOf(3);
  const std::uint32_t alphaMask = std::uint32_t{255} << alphaShift;
  for (std::size_t x = 0; x < pixels; ++x) {
    const std::uint32_t word = wordAt(row + 4 * x);
    const std::uint32_t alpha = word >> alphaShift & 255;
    // With alpha itself as 255, the product leaves it as it is.
    const std::uint32_t filled = word | alphaMask;
    setWord(row + 4 * x, productOfPair(filled & 0x00FF00FF, alpha) |
                             productOfPair(filled >> 8 & 0x00FF00FF, alpha) << 8);
  }
}

void unpremultiply(std::uint8_t* row, std::size_t pixels) {
  const std::array<int, 4> shift{shiftOf(0), shiftOf(1), shiftOf(2), shiftOf(3)};
  for (std::size_t x = 0; x < pixels; ++x) {
    const auto word = wordAt(row + 4 * x);
    const auto alpha = static_cast<std::int32_t>(word >> shift[3] & 255);
    std::uint32_t out = word & std::uint32_t{255} << shift[3];
    for (std::size_t c = 0; c < 3; ++c) {
      const auto v = static_cast<std::int32_t>(word >> shift[c] & 255);
      out |= static_cast<std::uint32_t>(quotient<std::uint8_t, float>(v, alpha)) << shift[c];
    }
    setWord(row + 4 * x, out);
  }
}

void blendOver(const std::uint8_t* source, std::uint8_t* row, std::size_t pixels) {
  for (std::size_t x = 0; x < pixels; ++x) {
    const std::uint32_t above = wordAt(source + 4 * x);
    const std::uint32_t below = wordAt(row + 4 * x);
    const std::uint32_t uncovered = 255 - (above >> shiftOf(3) & 255);
    // No byte overflows: no component is above its alpha.
    setWord(row + 4 * x, above + (productOfPair(below & 0x00FF00FF, uncovered) |
                                  productOfPair(below >> 8 & 0x00FF00FF, uncovered) << 8));
  }
}

void premultiply(std::uint16_t* row, std::size_t pixels) {
  for (std::uint16_t* const end = row + 4 * pixels; row < end; row += 4) {
    for (std::size_t c = 0; c < 3; ++c) {
      row[c] = static_cast<std::uint16_t>(product<std::uint16_t>(row[c], row[3]));
    }
  }
}

void unpremultiply(std::uint16_t* row, std::size_t pixels) {
  for (std::uint16_t* const end = row + 4 * pixels; row < end; row += 4) {
    for (std::size_t c = 0; c < 3; ++c) {
      row[c] = static_cast<std::uint16_t>(quotient<std::uint16_t, double>(row[c], row[3]));
    }
  }
}

}  // namespace FrameworkUtility::detail
