#include <bench/skia_canvas.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include <sys/wait.h>
#include <unistd.h>

namespace bench {

SkiaCanvas::SkiaCanvas(std::FILE* orders, std::FILE* answers, int process)
    : orders_(orders), answers_(answers), process_(process) {}

std::unique_ptr<SkiaCanvas> SkiaCanvas::start() {
  std::array<int, 2> orders;
  std::array<int, 2> answers;
  if (pipe(orders.data()) != 0 || pipe(answers.data()) != 0) return nullptr;
  const pid_t process = fork();
  if (process == 0) {
    dup2(orders[0], STDIN_FILENO);
    dup2(answers[1], STDOUT_FILENO);
    for (const int end : {orders[0], orders[1], answers[0], answers[1]}) close(end);
    execlp("node", "node", SKIA_CANVAS_SCRIPT, nullptr);
    _exit(127);
  }
  close(orders[0]);
  close(answers[1]);
  std::signal(SIGPIPE, SIG_IGN);  // a process that has ended shows by its missing answer
  std::unique_ptr<SkiaCanvas> canvas(
      new SkiaCanvas(fdopen(orders[1], "w"), fdopen(answers[0], "r"), process));
  return canvas->answers() ? std::move(canvas) : nullptr;  // "ready" once the module is loaded
}

SkiaCanvas::~SkiaCanvas() {
  std::fclose(orders_);
  std::fclose(answers_);
  waitpid(process_, nullptr, 0);
}

bool SkiaCanvas::answers() {
  std::array<char, 16> line;
  return std::fgets(line.data(), line.size(), answers_) != nullptr;
}

void SkiaCanvas::fillConical(int side, int times) {
  std::fprintf(orders_, "%d %d\n", side, times);
  std::fflush(orders_);
  if (answers()) return;
  std::fprintf(stderr, "Skia gave no answer\n");
  std::exit(1);
}

}  // namespace bench
