// Gradients on one core: into memory that is given, into new images, and conical ones.

#include <bench/paired.h>
#include <bench/skia_canvas.h>
#include <framework_utility/color/images/gradient_image.h>
#include <framework_utility/platform/graphics/cg_context.h>

#include <cairo.h>

#include <QConicalGradient>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QRadialGradient>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <sys/mman.h>

using namespace FrameworkUtility;

namespace {

constexpr int side = 4096;
constexpr std::size_t pictureBytes = std::size_t{4} * side * side;

const std::vector<KvColor> colors = {
    {0.9, 0.1, 0.2}, {0.95, 0.8, 0.1}, {0.1, 0.6, 0.9}, {0.2, 0.05, 0.4}};
const std::vector<double> locations = {0, 0.3, 0.7, 1};

void check(bool right, const char* who) {
  if (right) return;
  std::fprintf(stderr, "%s failed\n", who);
  std::exit(1);
}

/// Huge pages, touched, so that no contender waits for the system's memory.
std::byte* newPicture() {
  constexpr std::size_t hugePage = std::size_t{2} << 20;
  void* memory = std::aligned_alloc(hugePage, pictureBytes);
  check(memory != nullptr, "aligned_alloc");
  madvise(memory, pictureBytes, MADV_HUGEPAGE);
  std::memset(memory, 1, pictureBytes);
  return static_cast<std::byte*>(memory);
}

enum class Shape { across, down, diagonal, circle };

Point endOf(Shape shape) {
  return {shape == Shape::down ? 0.0 : side, shape == Shape::across ? 0.0 : side};
}

constexpr Point middle{side / 2.0, side / 2.0};
const double reach = side * std::sqrt(0.5);

void own(Shape shape, std::byte* memory) {
  CGImageLayout layout;
  layout.width = layout.height = side;
  layout.bytesPerRow = std::size_t{4} * side;
  layout.alphaInfo = CGImageAlphaInfo::noneSkipLast;
  const auto context = CGContext::createBitmapWithData({memory, pictureBytes}, layout);
  const auto gradient = CGGradient::createWithColors(KvColor::cgColors(colors), locations);
  if (shape == Shape::circle) {
    context->drawRadialGradient(*gradient, middle, reach);
  } else {
    context->drawLinearGradient(*gradient, {0, 0}, endOf(shape));
  }
}

/// Into `memory`, or with none into a new picture.
void cairo(Shape shape, std::byte* memory) {
  cairo_surface_t* surface =
      memory ? cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(memory),
                                                   CAIRO_FORMAT_ARGB32, side, side, 4 * side)
             : cairo_image_surface_create(CAIRO_FORMAT_ARGB32, side, side);
  cairo_t* context = cairo_create(surface);
  const Point end = endOf(shape);
  cairo_pattern_t* pattern =
      shape == Shape::circle
          ? cairo_pattern_create_radial(middle.x, middle.y, 0, middle.x, middle.y, reach)
          : cairo_pattern_create_linear(0, 0, end.x, end.y);
  for (std::size_t i = 0; i < colors.size(); ++i) {
    cairo_pattern_add_color_stop_rgba(pattern, locations[i], colors[i].red, colors[i].green,
                                      colors[i].blue, 1);
  }
  cairo_set_source(context, pattern);
  cairo_set_operator(context, CAIRO_OPERATOR_SOURCE);
  cairo_paint(context);
  cairo_pattern_destroy(pattern);
  check(cairo_status(context) == CAIRO_STATUS_SUCCESS, "Cairo");
  cairo_destroy(context);
  cairo_surface_flush(surface);
  cairo_surface_destroy(surface);
}

QColor qtColor(const KvColor& color) {
  return QColor::fromRgbF(color.red, color.green, color.blue);
}

void paint(QImage& image, const QGradient& gradient) {
  QPainter painter(&image);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.fillRect(image.rect(), QBrush(gradient));
}

/// In Qt's own format, the faster one, or in ours.
void qt(Shape shape, QImage::Format format, std::byte* memory) {
  QImage image = memory ? QImage(reinterpret_cast<uchar*>(memory), side, side, 4 * side, format)
                        : QImage(side, side, format);
  const Point end = endOf(shape);
  QRadialGradient circle(QPointF(middle.x, middle.y), reach);
  QLinearGradient line(0, 0, end.x, end.y);
  QGradient& gradient = shape == Shape::circle ? static_cast<QGradient&>(circle) : line;
  for (std::size_t i = 0; i < colors.size(); ++i) {
    gradient.setColorAt(locations[i], qtColor(colors[i]));
  }
  paint(image, gradient);
}

void compareInGivenMemory(const char* title, Shape shape, std::byte* memory) {
  bench::compare(std::string("4096 x 4096 into given memory: ") + title,
                 {{"CGContext", [=] { own(shape, memory); }},
                  {"Cairo", [=] { cairo(shape, memory); }},
                  {"Qt, BGRA", [=] { qt(shape, QImage::Format_ARGB32_Premultiplied, memory); }},
                  {"Qt, RGBA", [=] { qt(shape, QImage::Format_RGBA8888_Premultiplied, memory); }},
                  {"limit: memset", [=] { std::memset(memory, 0x55, pictureBytes); }}},
                 15);
}

void newImage() {
  const auto image =
      generateGradientImageOfSize({side, side}, 1, colors, locations, {0, 0}, {side, 0});
  check(image.has_value(), "generateGradientImageOfSize");
  bench::keep(image->cgImage()->pixels().data());
}

void newMemory() {
  std::byte* memory = newPicture();
  bench::keep(memory);
  std::free(memory);
}

// Eight colours, and so nine stops, on 1024 x 1024.

constexpr int conicalSide = 1024;
const std::vector<KvColor> wheel = {{1, 0, 0},     {1, 0.6, 0}, {0.9, 1, 0}, {0, 0.8, 0.1},
                                    {0, 0.9, 0.9}, {0, 0.2, 1}, {0.5, 0, 1}, {1, 0, 0.6}};

void ownConical() {
  const auto image = conicalGradientImageWithColors(wheel, {conicalSide, conicalSide}, 1);
  check(image.has_value(), "conicalGradientImageWithColors");
  bench::keep(image->cgImage()->pixels().data());
}

/// Every pixel for itself: its angle, a search for its stops, its mixture.
void plainConical(std::uint8_t* bytes) {
  struct Stop {
    double location, red, green, blue;
  };
  std::array<Stop, 9> stops;
  for (std::size_t i = 0; i < stops.size(); ++i) {
    const KvColor& color = wheel[i % wheel.size()];
    stops[i] = {static_cast<double>(i) / 8, color.red, color.green, color.blue};
  }
  constexpr double center = conicalSide * 0.5;
  constexpr double turn = 6.283185307179586;
  for (int y = 0; y < conicalSide; ++y) {
    for (int x = 0; x < conicalSide; ++x, bytes += 4) {
      double angle = std::atan2(y - center, x - center);
      if (angle < 0) angle += turn;
      const double t = angle / turn;
      Stop lower = stops.front();
      Stop upper = stops.back();
      for (const Stop& stop : stops) {
        if (lower.location < stop.location && stop.location <= t) lower = stop;
        if (stop.location < upper.location && stop.location >= t) upper = stop;
      }
      const double length = upper.location - lower.location;
      const double part = length == 0 ? 0 : (t - lower.location) / length;
      const auto level = [part](double from, double to) {
        return static_cast<std::uint8_t>((from + part * (to - from)) * 255);
      };
      bytes[0] = level(lower.red, upper.red);
      bytes[1] = level(lower.green, upper.green);
      bytes[2] = level(lower.blue, upper.blue);
      bytes[3] = 255;
    }
  }
}

/// Turns the other way, which costs the same.
void qtConical(QImage& image) {
  QConicalGradient gradient(QPointF(conicalSide / 2.0, conicalSide / 2.0), 0);
  for (std::size_t i = 0; i <= wheel.size(); ++i) {
    gradient.setColorAt(static_cast<double>(i) / 8, qtColor(wheel[i % wheel.size()]));
  }
  paint(image, gradient);
}

void compareConical() {
  constexpr int times = 10;  // so that what Skia's reply costs hardly counts
  const auto repeated = [](const auto& work) {
    return [work] {
      for (int i = 0; i < times; ++i) work();
    };
  };
  std::vector<std::uint8_t> plain(std::size_t{4} * conicalSide * conicalSide);
  QImage image(conicalSide, conicalSide, QImage::Format_ARGB32_Premultiplied);
  std::vector<bench::Contender> contenders = {
      {"conicalGradientImageWithColors", repeated(ownConical)},
      {"the plain loop", repeated([&] { plainConical(plain.data()); })},
      {"Qt, BGRA", repeated([&] { qtConical(image); })}};
  const auto skia = bench::SkiaCanvas::start();
  if (skia) contenders.push_back({"Skia", [&] { skia->fillConical(conicalSide, times); }});
  bench::compare("ten conical gradients of 8 colours, 1024 x 1024", contenders, 11);
  if (!skia) std::puts("  Skia: its npm module cannot be had here");
}

}  // namespace

int main() {
  std::byte* memory = newPicture();
  compareInGivenMemory("linear, across", Shape::across, memory);
  compareInGivenMemory("linear, down", Shape::down, memory);
  compareInGivenMemory("linear, diagonal", Shape::diagonal, memory);
  compareInGivenMemory("radial", Shape::circle, memory);
  std::free(memory);

  const auto newQt = [] { qt(Shape::across, QImage::Format_ARGB32_Premultiplied, nullptr); };
  bench::compare("a new image of 4096 x 4096, linear, across",
                 {{"generateGradientImageOfSize", newImage},
                  {"Cairo", [] { cairo(Shape::across, nullptr); }},
                  {"Qt, BGRA", newQt},
                  {"limit: memset of new huge pages", newMemory}},
                 15);
  compareConical();
}
