// Draws a B-scan by a control loop without any window and writes it as PNG: headless_loop [OUT.png]
#include <cmath>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <vector>

#include "oct_rendering/oct_rendering.h"

#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>

namespace {

constexpr int depth = 256;
constexpr int a_scans = 300;

// What the loop's functions and main share; the functions take no pointer of the client's.
DisplayRenderingHandle display = nullptr;
std::mutex mutex;
std::condition_variable changed;
std::vector<unsigned char> rgb;  // top row first
unsigned image_width = 0;
bool failed = false;

// On the render thread, the context current: renderers are made and freed where they draw.
void init() {
  initDisplayRendering(display);
}
void uninit() {
  uninitDisplayRendering(display);
}
void draw(unsigned) {
  renderDisplay(display);
}

// On the return thread: the pixels are valid until this returns, so take what is needed and go.
void show(unsigned, unsigned width, unsigned height, void* surface) {
  const auto& image = *static_cast<const OctHostSurface*>(surface);
  const std::lock_guard lock(mutex);
  image_width = width;
  for (unsigned y = 0; y < height; ++y) {
    const unsigned char* pixel = image.pixels + static_cast<std::size_t>(y) * image.stride_bytes;
    for (unsigned x = 0; x < width; ++x, pixel += 4) rgb.insert(rgb.end(), pixel, pixel + 3);
  }
  changed.notify_one();
}

void error(const char* message) {
  std::fprintf(stderr, "%s\n", message);
  const std::lock_guard lock(mutex);
  failed = true;
  changed.notify_one();
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<float> image(static_cast<std::size_t>(depth) *
                           a_scans);  // two layers below a wavy surface, in dB
  for (int x = 0; x < a_scans; ++x) {
    for (int z = 0; z < depth; ++z) {
      const double surface = 60 + 20 * std::sin(x * 0.03);
      image[static_cast<std::size_t>(x * depth + z)] =
          z < surface ? 5.0F : (z < surface + 60 ? 45.0F : 30.0F) - 0.1F * static_cast<float>(z);
    }
  }
  display = createDisplayRendering();
  setDisplayData(display, depth, a_scans, image.data());
  setDisplayColoringBoundaries(display, 0.0, 45.0);

  setSurfaceSharing(1);  // host memory, on every platform
  setHostPixelFormat(OCT_PIXELS_RGBA_TOP_DOWN);
  prepareOpenGL();
  OpenGLControlLoopHandle loop = createOpenGLControlLoopCB(init, uninit, error);
  registerOpenGLControlLoopRenderCallback(loop, draw);
  registerOpenGLControlLoopCallback(loop, show);
  OpenGLControlLoopMode(loop, 0);  // one frame for one request
  resizeOpenGLControlLoop(loop, 600, 512);
  renderOpenGLControlLoop(loop);
  {
    std::unique_lock lock(mutex);
    changed.wait(lock, [] { return failed || !rgb.empty(); });
  }
  deleteOpenGLControlLoop(loop);  // from here on none of the functions above is called
  finishOpenGL();
  clearDisplayRendering(display);

  char message[512];
  if (getRendererError(message, sizeof message)) failed = true, std::fprintf(stderr, "%s\n", message);
  if (failed) return 1;
  const int width = static_cast<int>(image_width);
  const int height = static_cast<int>(rgb.size() / 3 / image_width);
  return stbi_write_png(argc > 1 ? argv[1] : "headless_loop.png", width, height, 3, rgb.data(), width * 3)
             ? 0
             : 1;
}
