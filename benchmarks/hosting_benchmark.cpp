// What a control loop costs beyond drawing: frames per second and the time from request to picture with an
// empty render function, against a bare loop that clears a framebuffer of the same size and reads it back,
// measured in turn in the same run. Absolute times mean little on a shared machine; the ratios are the
// result. The Direct3D ring (Windows) runs with the stand-in for the interop, which copies every frame
// through system memory: its figures are those of the stand-in, not of a driver.
#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>
#include <vector>

#include "gl/context/opengl_context.h"
#include "gl/context/opengl_loader.h"
#include "gl/gl_names.h"
#include "median.h"
#include "oct_rendering/oct_rendering.h"
#include "support/surfaces.h"

using oct::SurfaceSharing;
using oct::benchmark_scene::median;

namespace {

constexpr int batch = 50;
constexpr int rounds = 9;

using Clock = std::chrono::steady_clock;

double milliseconds(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

void draw_nothing() {
  glClearColor(0.5F, 0.5F, 0.5F, 1.0F);
  glClear(GL_COLOR_BUFFER_BIT);
}

// The frames that have been returned. The loop's functions take no pointer of ours.
std::mutex mutex;
std::condition_variable changed;
int returned = 0;
volatile unsigned char seen = 0;

void draw(unsigned) {
  draw_nothing();
}
void count(unsigned, unsigned, unsigned, void*) {
  const std::lock_guard lock(mutex);
  ++returned;
  changed.notify_one();
}
void look(unsigned index, unsigned width, unsigned height, void* surface) {
  seen = *static_cast<OctHostSurface*>(surface)->pixels;
  count(index, width, height, surface);
}
void wait_for(int count) {
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
    draw_nothing();
    glReadPixels(0, 0, size_, size_, GL_BGRA, GL_UNSIGNED_BYTE, pixels_.data());
    seen = pixels_.front();
  }

 private:
  const int size_;
  oct::gl::OpenGLWindow window_;
  oct::gl::OpenGLContext context_;
  std::vector<unsigned char> pixels_;
  oct::gl::Framebuffer framebuffer_;
  oct::gl::Renderbuffer color_;
};

struct Figures {
  double frame, bare, latency;  // milliseconds
};

Figures measure_ring(SurfaceSharing kind, unsigned size) {
  oct::test::choose_sharing(kind);
  const OpenGLControlLoopHandle loop = createOpenGLControlLoop();
  registerOpenGLControlLoopRenderCallback(loop, draw);
  registerOpenGLControlLoopCallback(loop, kind == SurfaceSharing::host_memory ? look : count);
  OpenGLControlLoopMode(loop, 0);
  resizeOpenGLControlLoop(loop, size, size);
  std::vector<double> many, one, bare;
  {
    BareLoop bare_loop(static_cast<int>(size));
    returned = 0;
    int asked = 0;
    renderMultOpenGLControlLoop(loop, asked++);
    wait_for(1);
    bare_loop.frame();
    for (int round = 0; round < rounds; ++round) {
      auto start = Clock::now();
      const int end = asked + batch;
      while (asked < end) renderMultOpenGLControlLoop(loop, asked++);
      wait_for(end);
      many.push_back(milliseconds(start) / batch);
      start = Clock::now();
      renderMultOpenGLControlLoop(loop, asked++);
      wait_for(asked);
      one.push_back(milliseconds(start));
      start = Clock::now();
      for (int i = 0; i < batch; ++i) bare_loop.frame();
      bare.push_back(milliseconds(start) / batch);
    }
  }
  deleteOpenGLControlLoop(loop);
  return {median(many), median(bare), median(one) - median(bare)};
}

// How much longer other threads take, one for each core, beside a loop of mode 1 that was asked for nothing.
double idle_loop_beside_work() {
  const auto work = [] {
    const auto start = Clock::now();
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < std::max(1U, std::thread::hardware_concurrency()); ++i) {
      threads.emplace_back([] {
        volatile double sum = 0.0;
        for (int k = 1; k < 20'000'000; ++k) sum = sum + 1.0 / k;
      });
    }
    for (std::thread& thread : threads) thread.join();
    return milliseconds(start);
  };
  std::vector<double> alone, beside;
  oct::test::choose_sharing(SurfaceSharing::host_memory);
  for (int round = 0; round < 5; ++round) {
    alone.push_back(work());
    const OpenGLControlLoopHandle loop = createOpenGLControlLoop();
    resizeOpenGLControlLoop(loop, 64, 64);
    beside.push_back(work());
    deleteOpenGLControlLoop(loop);
  }
  return median(beside) / median(alone);
}

}  // namespace

int main() {
  std::fprintf(stderr, "ring          size  frames/s  bare/s  ratio  added latency\n");
  for (const SurfaceSharing kind : oct::test::surface_sharings()) {
    for (const unsigned size : {256U, 512U, 1024U}) {
      const Figures figures = measure_ring(kind, size);
      std::fprintf(stderr, "%-12s %5u %9.0f %7.0f %6.2f %11.2f ms\n",
                   kind == SurfaceSharing::direct3d ? "Direct3D" : "host memory", size,
                   1000.0 / figures.frame, 1000.0 / figures.bare, figures.frame / figures.bare,
                   figures.latency);
    }
  }
  std::fprintf(stderr, "other threads beside an idle loop of mode 1 take %.2f times as long\n",
               idle_loop_beside_work());
}
