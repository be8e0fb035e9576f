// What a control loop costs beyond drawing: frames per second and the time from request to picture with an
// empty render function, against a bare loop that clears a framebuffer of the same size and reads it back,
// measured in turn in the same run. Absolute times mean little on a shared machine; the ratios are the
// result.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "gl/gl_names.h"
#include "gl/opengl_context.h"
#include "gl/opengl_loader.h"
#include "hosting/host_buffer_object.h"
#include "median.h"
#include "oct_rendering/oct_rendering.h"

using oct::benchmark_scene::median;

namespace {

constexpr int batch = 50;

using Clock = std::chrono::steady_clock;

double milliseconds(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

void drawNothing() {
  glClearColor(0.5F, 0.5F, 0.5F, 1.0F);
  glClear(GL_COLOR_BUFFER_BIT);
}

// The frames that have been returned. The loop's functions take no pointer of ours.
std::mutex mutex;
std::condition_variable changed;
int returned = 0;
unsigned char seen = 0;

void draw(unsigned) {
  drawNothing();
}
void show(unsigned, unsigned, unsigned, void* surface) {
  const std::lock_guard lock(mutex);
  seen = *static_cast<OctHostSurface*>(surface)->pixels;
  ++returned;
  changed.notify_one();
}
void waitFor(int count) {
  std::unique_lock lock(mutex);
  changed.wait(lock, [&] { return returned >= count; });
}

class BareLoop {
 public:
  explicit BareLoop(int size)
      : size_(size), context_(window_), pixels_(static_cast<std::size_t>(size) * size * 4) {
    context_.makeCurrent();
    oct::gl::initGlew();
    framebuffer_ = oct::gl::Framebuffer::create();
    color_ = oct::gl::Renderbuffer::create();
    glBindRenderbuffer(GL_RENDERBUFFER, color_.get());
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, size, size);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_.get());
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color_.get());
    glViewport(0, 0, size, size);
  }

  void frame() {
    drawNothing();
    glReadPixels(0, 0, size_, size_, GL_BGRA, GL_UNSIGNED_BYTE, pixels_.data());
    benchmark::ClobberMemory();
  }

 private:
  const int size_;
  oct::gl::OpenGLWindow window_;
  oct::gl::OpenGLContext context_;
  std::vector<unsigned char> pixels_;
  oct::gl::Framebuffer framebuffer_;
  oct::gl::Renderbuffer color_;
};

void hostMemoryRing(benchmark::State& state) {
  const auto size = static_cast<unsigned>(state.range(0));
  setSurfaceSharing(1);
  const OpenGLControlLoopHandle loop = createOpenGLControlLoop();
  registerOpenGLControlLoopRenderCallback(loop, draw);
  registerOpenGLControlLoopCallback(loop, show);
  OpenGLControlLoopMode(loop, 0);
  resizeOpenGLControlLoop(loop, size, size);
  std::vector<double> many, one, bare;
  {
    BareLoop bareLoop(static_cast<int>(size));
    returned = 0;
    int asked = 0;
    renderMultOpenGLControlLoop(loop, asked++);
    waitFor(1);
    bareLoop.frame();
    for (auto _ : state) {
      auto start = Clock::now();
      const int end = asked + batch;
      while (asked < end) renderMultOpenGLControlLoop(loop, asked++);
      waitFor(end);
      many.push_back(milliseconds(start) / batch);
      start = Clock::now();
      renderMultOpenGLControlLoop(loop, asked++);
      waitFor(asked);
      one.push_back(milliseconds(start));
      start = Clock::now();
      for (int i = 0; i < batch; ++i) bareLoop.frame();
      bare.push_back(milliseconds(start) / batch);
    }
  }
  deleteOpenGLControlLoop(loop);
  state.counters["frames_per_s"] = 1000.0 / median(many);
  state.counters["bare_per_s"] = 1000.0 / median(bare);
  state.counters["ratio"] = median(many) / median(bare);
  state.counters["added_latency_ms"] = median(one) - median(bare);
}
BENCHMARK(hostMemoryRing)
    ->ArgName("size")
    ->Arg(256)
    ->Arg(512)
    ->Arg(1024)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// How much longer other threads take, one for each core, beside a loop of mode 1 that was asked for nothing.
void idleLoopBesideWork(benchmark::State& state) {
  const auto work = [] {
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < std::max(1U, std::thread::hardware_concurrency()); ++i) {
      threads.emplace_back([] {
        double sum = 0.0;
        for (int k = 1; k < 20'000'000; ++k) benchmark::DoNotOptimize(sum += 1.0 / k);
      });
    }
    for (std::thread& thread : threads) thread.join();
  };
  std::vector<double> alone, beside;
  setSurfaceSharing(1);
  for (auto _ : state) {
    auto start = Clock::now();
    work();
    alone.push_back(milliseconds(start));
    const OpenGLControlLoopHandle loop = createOpenGLControlLoop();
    resizeOpenGLControlLoop(loop, 64, 64);
    start = Clock::now();
    work();
    beside.push_back(milliseconds(start));
    deleteOpenGLControlLoop(loop);
  }
  state.counters["ratio"] = median(beside) / median(alone);
}
BENCHMARK(idleLoopBesideWork)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);

}  // namespace

BENCHMARK_MAIN();
