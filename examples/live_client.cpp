// Shows live volumes of the simulated device in a control loop and writes a
// snapshot as PNG: live_client [OUT.png]
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

#include "oct_device/oct_device.h"
#include "oct_rendering/oct_rendering.h"
#include "oct_simulator/oct_simulator.h"

#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>

namespace {

constexpr int width = 640;
constexpr int height = 480;

// What the functions below and main share; the functions take no pointer of the client's.
VolumeRendererHandle renderer = nullptr;
LiveVolumeRenderingHandle live = nullptr;
std::atomic<unsigned> frames = 0;
std::atomic<bool> failed = false;

// On the render thread, the context current: here the renderer is made and freed, and here it draws.
void init() {
  initializeVolumeRenderer(renderer);
  std::array<unsigned char, 256 * 4> colors{};  // from black over red to white, ever less transparent
  for (unsigned i = 0; i < 256; ++i) {
    unsigned char* const color = &colors[4 * i];
    color[0] = static_cast<unsigned char>(i < 128 ? 2 * i : 255);
    color[1] = color[2] = static_cast<unsigned char>(i < 128 ? 0 : 2 * (i - 128));
    color[3] = static_cast<unsigned char>(i * i / 255 / 4);
  }
  setRendererColormap(renderer, colors.data(), 256);
  setRendererColoringBoundaries(renderer, 22.0, 60.0);  // decibels
}
void draw(unsigned) {
  renderVolume(live);
}
void uninit() {
  renderVolume(live);  // the frame after stopDataSource: frees the OpenGL objects
  uninitializeVolumeRenderer(renderer);
}

// On the return thread. A program with a window shows the surface here; this one only counts.
void show(unsigned, unsigned, unsigned, void*) {
  ++frames;
}

// On the render thread or the acquisition thread.
void error(const char* message) {
  std::fprintf(stderr, "%s\n", message);
  failed = true;
}

unsigned volumes_drawn() {
  unsigned drawn = 0;
  getLiveVolumeCounts(live, &drawn, nullptr);
  return drawn;
}

}  // namespace

int main(int argc, char** argv) {
  // The device: a finger pad that drifts, 128 depth samples and 96 x 96 A-scans on 4 x 4 mm.
  const OCTDeviceHandle device = createSimulatedDevice(OCT_PHANTOM_FINGER_PAD, 256, 1);
  setSimulatedMotion(device, OCT_MOTION_DRIFT, 0.4, 4.0);
  const ProcessingHandle processing = createSimulatedProcessing(device);
  const ScanPatternHandle pattern = createSimulatedScanPattern(device, 96, 96, 4.0, 4.0);

  // The screen: a loop that draws as fast as its frames are taken.
  renderer = createVolumeRenderer();
  setAngles(renderer, 25.0, -35.0);
  setZoom(renderer, 52.0);
  setRenderingSlices(renderer, 128);
  setRenderElements(renderer, 1, 0);
  live = createLiveRendering();
  setLiveVolumeRenderingRenderer(live, renderer);
  setSurfaceSharing(1);  // host memory, on every platform
  prepareOpenGL();
  const OpenGLControlLoopHandle loop = createOpenGLControlLoopCB(init, uninit, error);
  registerOpenGLControlLoopRenderCallback(loop, draw);
  registerOpenGLControlLoopCallback(loop, show);
  resizeOpenGLControlLoop(loop, width, height);
  renderOpenGLControlLoop(loop);

  // The source between them.
  const LiveDataSourceHandle source = createOnlineDataSource(device, processing);
  setErrorCallback(source, error);
  setOnlineRefractiveIndex(source, 1.34);
  startDataSource(live, source, pattern);

  // A source that could not be made or started does not run.
  while (!failed && isDataSourceRunning(source) && volumes_drawn() < 4) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  std::vector<unsigned char> rgba(std::size_t{width} * height * 4);
  if (!failed) snapshotOpenGLControlLoopAs(loop, width, height, OCT_PIXELS_RGBA_TOP_DOWN, rgba.data());

  // Down again: first the source, then the loop, whose last frame lets go of OpenGL, then the rest.
  stopDataSource(source);
  deleteOpenGLControlLoop(loop);  // from here on neither draw nor show is called
  finishOpenGL();
  clearDataSource(source);  // from here on error is not called either
  clearLiveRendering(live);
  deleteVolumeRenderer(renderer);
  clearSimulatedScanPattern(pattern);
  clearSimulatedProcessing(processing);
  clearSimulatedDevice(device);

  char message[512];
  if (getRendererError(message, sizeof message)) error(message);
  if (getError(message, sizeof message)) error(message);
  if (failed) return 1;
  std::printf("%u frames\n", frames.load());

  std::vector<unsigned char> rgb;
  for (std::size_t i = 0; i < rgba.size(); i += 4) rgb.insert(rgb.end(), {rgba[i], rgba[i + 1], rgba[i + 2]});
  const char* const file = argc > 1 ? argv[1] : "live_client.png";
  return stbi_write_png(file, width, height, 3, rgb.data(), width * 3) ? 0 : 1;
}
