#pragma once

#include <cstdio>
#include <memory>

namespace bench {

/// Skia's rasteriser on the processor, in a process of its own: its npm module under Node.
class SkiaCanvas {
 public:
  /// Null where there is no Node or no module; scripts/bench.sh installs the latter.
  static std::unique_ptr<SkiaCanvas> start();
  SkiaCanvas(const SkiaCanvas&) = delete;
  SkiaCanvas& operator=(const SkiaCanvas&) = delete;
  ~SkiaCanvas();

  /// Fills a canvas of `side` x `side` pixels with a conical gradient of 9 stops `times` times and
  /// waits until it has happened. Ends the program when there is no answer.
  void fillConical(int side, int times);

 private:
  SkiaCanvas(std::FILE* orders, std::FILE* answers, int process);
  bool answers();

  std::FILE* orders_;
  std::FILE* answers_;
  int process_;
};

}  // namespace bench
