#include <framework_utility/platform/graphics/cg_context.h>

#include <framework_utility/platform/graphics/bitmap_memory.h>
#include <framework_utility/platform/graphics/gradient_fill.h>
#include <framework_utility/platform/graphics/masked_drawing.h>
#include <framework_utility/platform/graphics/rgba_rows.h>

#include <algorithm>
#include <cstdint>
#include <utility>

namespace FrameworkUtility {

using detail::BitmapMemory;
using detail::Coverage;
using detail::GradientFill;

namespace {

constexpr std::size_t bytesPerPixel = 4;

/// First `b`, then `a`.
AffineTransform concatenated(const AffineTransform& a, const AffineTransform& b) {
  return {a.a * b.a + a.c * b.b, a.b * b.a + a.d * b.b,          a.a * b.c + a.c * b.d,
          a.b * b.c + a.d * b.d, a.a * b.tx + a.c * b.ty + a.tx, a.b * b.tx + a.d * b.ty + a.ty};
}

Point mapped(Point p, const AffineTransform& t) {
  return {t.a * p.x + t.c * p.y + t.tx, t.b * p.x + t.d * p.y + t.ty};
}

bool canHold(CGImageAlphaInfo alphaInfo) {
  return alphaInfo == CGImageAlphaInfo::premultipliedLast ||
         alphaInfo == CGImageAlphaInfo::noneSkipLast;
}

CGImageLayout tightLayout(std::size_t width, std::size_t height, CGImageAlphaInfo alphaInfo) {
  CGImageLayout layout;
  layout.width = width;
  layout.height = height;
  layout.bytesPerRow = width * bytesPerPixel;
  layout.alphaInfo = alphaInfo;
  return layout;
}

}  // namespace

struct CGContext::State {
  AffineTransform ctm;
  RGBA fillColor;
  std::shared_ptr<const Coverage> clip;  // null: the whole bitmap
};

CGContext::CGContext(const CGImageLayout& layout, std::unique_ptr<BitmapMemory> memory)
    : layout_(layout), memory_(std::move(memory)) {
  states_.push_back({{1, 0, 0, -1, 0, static_cast<double>(layout.height)}, {}, nullptr});
}

CGContext::~CGContext() = default;

std::unique_ptr<CGContext> CGContext::createBitmap(std::size_t width, std::size_t height,
                                                   CGImageAlphaInfo alphaInfo) {
  if (!canHold(alphaInfo) || width > detail::maximumPixelBytes) return nullptr;
  auto pixels = detail::PixelBuffer::allocate(height, width * bytesPerPixel);
  if (!pixels) return nullptr;
  return std::unique_ptr<CGContext>(new CGContext(
      tightLayout(width, height, alphaInfo), std::make_unique<BitmapMemory>(std::move(*pixels))));
}

std::unique_ptr<CGContext> CGContext::createBitmapWithData(std::span<std::byte> memory,
                                                           const CGImageLayout& layout) {
  CGImageLayout known = tightLayout(layout.width, layout.height, layout.alphaInfo);
  known.bytesPerRow = layout.bytesPerRow;
  known.byteOrder = layout.byteOrder;
  const bool isKnown = layout == known && canHold(layout.alphaInfo) &&
                       (layout.byteOrder == CGImageByteOrder::unspecified ||
                        layout.byteOrder == CGImageByteOrder::big32);
  if (!isKnown || layout.width == 0 || layout.height == 0 ||
      layout.width > layout.bytesPerRow / bytesPerPixel ||
      layout.height > memory.size() / layout.bytesPerRow) {
    return nullptr;
  }
  return std::unique_ptr<CGContext>(new CGContext(layout, std::make_unique<BitmapMemory>(memory)));
}

AffineTransform CGContext::ctm() const { return states_.back().ctm; }

void CGContext::concatCTM(const AffineTransform& transform) {
  states_.back().ctm = concatenated(states_.back().ctm, transform);
}

void CGContext::saveGState() { states_.push_back(State(states_.back())); }

void CGContext::restoreGState() {
  if (states_.size() > 1) states_.pop_back();
}

void CGContext::setFillColor(const CGColor& color) { states_.back().fillColor = color.components; }

std::optional<Coverage> CGContext::insideOf(const std::vector<Point>& corners) const {
  if (std::max(layout_.width, layout_.height) > detail::pixmanLongestSide) return std::nullopt;
  const State& state = states_.back();
  std::vector<Point> pixels;
  pixels.reserve(corners.size());
  for (const Point& corner : corners) pixels.push_back(mapped(corner, state.ctm));
  std::optional<Coverage> inside = Coverage::ofPolygon(
      pixels, {0, 0, static_cast<int>(layout_.width), static_cast<int>(layout_.height)});
  return inside && state.clip ? inside->intersected(*state.clip) : std::move(inside);
}

void CGContext::clipToPolygon(const std::vector<Point>& corners) {
  std::optional<Coverage> inside = insideOf(corners);
  if (inside) {
    states_.back().clip = std::make_shared<const Coverage>(std::move(*inside));
  } else {
    isIncomplete_ = true;
  }
}

/// `draw` is given the bitmap and what of it to draw on, and answers whether it could.
template <class Draw>
void CGContext::drawInside(const Coverage& where, const Draw& draw) {
  if (where.box().isEmpty()) return;
  std::uint8_t* const pixels = memory_->pixels(layout_, false);
  const detail::DrawnBitmap bitmap{{pixels, layout_.width, layout_.height, layout_.bytesPerRow},
                                   detail::carriesAlpha(layout_.alphaInfo)};
  if (!pixels || !draw(bitmap, where)) isIncomplete_ = true;
}

template <class Draw>
void CGContext::drawInside(const Rect& rect, const Draw& draw) {
  const std::optional<Coverage> where = insideOf({{rect.minX(), rect.minY()},
                                                  {rect.maxX(), rect.minY()},
                                                  {rect.maxX(), rect.maxY()},
                                                  {rect.minX(), rect.maxY()}});
  if (where) {
    drawInside(*where, draw);
  } else {
    isIncomplete_ = true;
  }
}

void CGContext::fillRect(const Rect& rect) {
  drawInside(rect, [&](const detail::DrawnBitmap& bitmap, const Coverage& where) {
    return detail::drawColor(bitmap, states_.back().fillColor, where);
  });
}

void CGContext::drawImage(const CGImage& image, const Rect& rect) {
  const double right = rect.width() / static_cast<double>(image.width());
  const double down = -rect.height() / static_cast<double>(image.height());
  const AffineTransform toPixels =
      concatenated(ctm(), {right, 0, 0, down, rect.minX(), rect.maxY()});
  drawInside(rect, [&](const detail::DrawnBitmap& bitmap, const Coverage& where) {
    return detail::drawImage(bitmap, image, toPixels, where);
  });
}

void CGContext::drawLinearGradient(const CGGradient& gradient, Point start, Point end) {
  draw(GradientFill::linear(gradient, start, end, ctm()), gradient.isOpaque());
}

void CGContext::drawRadialGradient(const CGGradient& gradient, Point center, double radius) {
  draw(GradientFill::radial(gradient, center, radius, ctm()), gradient.isOpaque());
}

void CGContext::draw(const std::optional<GradientFill>& fill, bool isOpaque) {
  if (!fill) return;
  if (const auto clip = states_.back().clip) {
    drawInside(*clip, [&](const detail::DrawnBitmap& bitmap, const Coverage& where) {
      return detail::drawGradient(bitmap, *fill, where);
    });
    return;
  }
  const bool overwritesAll = isOpaque || memory_->isClear();
  std::uint8_t* const pixels = memory_->pixels(layout_, overwritesAll);
  if (!pixels) {
    isIncomplete_ = true;
    return;
  }
  const detail::PixelRows rows{pixels, layout_.width, layout_.height, layout_.bytesPerRow};
  if (overwritesAll) {
    fill->fill(rows);
    return;
  }
  std::vector<std::uint8_t> above(layout_.width * bytesPerPixel);
  for (std::size_t y = 0; y < layout_.height; ++y) {
    fill->fillRow(y, above.data(), layout_.width);
    detail::blendOver(above.data(), rows.row(y), layout_.width);
  }
}

std::optional<CGImage> CGContext::createImage() {
  const std::optional<Data> pixels = isIncomplete_ ? std::nullopt : memory_->share(layout_);
  return pixels ? CGImage::create(layout_, CGColorSpace::createDeviceRGB(), *pixels) : std::nullopt;
}

}  // namespace FrameworkUtility
