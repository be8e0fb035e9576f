#include "live/live_stage.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

#include "support/test_context.h"
#include "volume/volume_renderer.h"

namespace oct::test {
namespace {

std::unique_ptr<Recorded<std::string>> errorRecord;
std::unique_ptr<Recorded<double>> intensityRecord;
std::function<void()> errorAction;
std::function<void()> intensityAction;

}  // namespace

Recorded<std::string>& clientErrors() {
  return *errorRecord;
}
Recorded<double>& intensities() {
  return *intensityRecord;
}

LiveStage::LiveStage() {
  errorRecord = std::make_unique<Recorded<std::string>>();
  intensityRecord = std::make_unique<Recorded<double>>();
  errorAction = intensityAction = nullptr;
  device.reset();
  setDeviceLibrary(OCT_PATTERN_DEVICE);
  live = createLiveRendering();
  setLiveVolumeRenderingRenderer(live, volumeStage.renderer);
  setRenderElements(volumeStage.renderer, 1, 0);
  pendingError();
}

LiveStage::~LiveStage() {
  device.release();
  clearDataSource(source);
  frame();
  EXPECT_FALSE(isLiveVolumeRunning(live));
  clearLiveRendering(live);
  EXPECT_EQ(device.objects(), 0);
  EXPECT_EQ(device.misuses(), 0);
  EXPECT_EQ(pendingError(), "(none)");
}

void LiveStage::makeSource() {
  source = createOnlineDataSource(device.device(), device.processing(0));
  onError(nullptr);
  onIntensity(nullptr);
}

void LiveStage::makePolarizationSource() {
  source = createOnlineDataSource_PS(device.device(), device.processing(0), device.processing(1),
                                     device.polarization());
  onError(nullptr);
  onIntensity(nullptr);
}

void LiveStage::onIntensity(std::function<void()> action) {
  intensityAction = std::move(action);
  setRefIntensityCallback(source, [](double value) {
    if (intensityAction) intensityAction();
    intensities().add(value);
  });
}

void LiveStage::onError(std::function<void()> action) {
  errorAction = std::move(action);
  setErrorCallback(source, [](const char* message) {
    if (errorAction) errorAction();
    clientErrors().add(message);
  });
}

Picture LiveStage::frame(int width, int height, LiveVolumeRenderingHandle drawn) {
  Picture picture(width, height);
  beginOffscreenFrame(volumeStage.target, static_cast<unsigned>(width), static_cast<unsigned>(height));
  renderVolume(drawn);
  readVoxels();
  finishOffscreenFrame(volumeStage.target, picture.bytes.data());
  ++frames_;
  return picture;
}

void LiveStage::readVoxels() {
  voxels.clear();
  const GLuint texture = reinterpret_cast<VolumeRenderer*>(volumeStage.renderer)->source().volume;
  if (texture == 0) return;
  glBindTexture(GL_TEXTURE_3D, texture);
  GLint size[3] = {};
  const GLenum queries[3] = {GL_TEXTURE_WIDTH, GL_TEXTURE_HEIGHT, GL_TEXTURE_DEPTH};
  for (std::size_t i = 0; i < 3; ++i) glGetTexLevelParameteriv(GL_TEXTURE_3D, 0, queries[i], &size[i]);
  voxels.resize(static_cast<std::size_t>(size[0]) * static_cast<std::size_t>(size[1]) *
                static_cast<std::size_t>(size[2]));
  glGetTexImage(GL_TEXTURE_3D, 0, GL_RED, GL_FLOAT, voxels.data());
  glBindTexture(GL_TEXTURE_3D, 0);
}

bool LiveStage::framesUntil(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (std::chrono::steady_clock::now() < end) {
    frame();
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return false;
}

void LiveStage::run(int volumes) {
  intensities().clear();
  onIntensity([this, volumes, seen = 1]() mutable {
    if (++seen == volumes) return stopDataSource(source);
    const int enough = frames_ + 4;
    while (frames_ < enough) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  });
  start();
  EXPECT_TRUE(
      framesUntil([&] { return intensities().all().size() + 1 == static_cast<std::size_t>(volumes); }));
  stopDataSource(source);
  // The callback's own stop cannot wait for the thread that it runs on.
  EXPECT_NE(pendingError(), "(none)");
}

bool uniform(const std::vector<float>& voxels) {
  return std::all_of(voxels.begin(), voxels.end(), [&](float voxel) { return voxel == voxels.front(); });
}

}  // namespace oct::test
