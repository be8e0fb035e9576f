#include "live/live_stage.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

#include "support/test_context.h"
#include "volume/volume_renderer.h"

namespace oct::test {
namespace {

std::unique_ptr<Recorded<std::string>> error_record;
std::unique_ptr<Recorded<double>> intensity_record;
std::function<void()> error_action;
std::function<void()> intensity_action;

}  // namespace

Recorded<std::string>& client_errors() {
  return *error_record;
}
Recorded<double>& intensities() {
  return *intensity_record;
}

LiveStage::LiveStage() {
  error_record = std::make_unique<Recorded<std::string>>();
  intensity_record = std::make_unique<Recorded<double>>();
  error_action = intensity_action = nullptr;
  device.reset();
  setDeviceLibrary(OCT_PATTERN_DEVICE);
  live = createLiveRendering();
  setLiveVolumeRenderingRenderer(live, volume_stage.renderer);
  setRenderElements(volume_stage.renderer, 1, 0);
  pending_error();
}

LiveStage::~LiveStage() {
  device.release();
  clearDataSource(source);
  frame();
  EXPECT_FALSE(isLiveVolumeRunning(live));
  clearLiveRendering(live);
  EXPECT_EQ(device.objects(), 0);
  EXPECT_EQ(device.misuses(), 0);
  EXPECT_EQ(pending_error(), "(none)");
}

void LiveStage::make_source() {
  source = createOnlineDataSource(device.device(), device.processing(0));
  on_error(nullptr);
  on_intensity(nullptr);
}

void LiveStage::make_polarization_source() {
  source = createOnlineDataSource_PS(device.device(), device.processing(0), device.processing(1),
                                     device.polarization());
  on_error(nullptr);
  on_intensity(nullptr);
}

void LiveStage::on_intensity(std::function<void()> action) {
  intensity_action = std::move(action);
  setRefIntensityCallback(source, [](double value) {
    if (intensity_action) intensity_action();
    intensities().add(value);
  });
}

void LiveStage::on_error(std::function<void()> action) {
  error_action = std::move(action);
  setErrorCallback(source, [](const char* message) {
    if (error_action) error_action();
    client_errors().add(message);
  });
}

Picture LiveStage::frame(int width, int height, LiveVolumeRenderingHandle drawn) {
  Picture picture(width, height);
  beginOffscreenFrame(volume_stage.target, static_cast<unsigned>(width), static_cast<unsigned>(height));
  renderVolume(drawn);
  read_voxels();
  finishOffscreenFrame(volume_stage.target, picture.bytes.data());
  ++frames_;
  return picture;
}

void LiveStage::read_voxels() {
  voxels.clear();
  const GLuint texture = reinterpret_cast<VolumeRenderer*>(volume_stage.renderer)->source().volume;
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

bool LiveStage::frames_until(const std::function<bool()>& condition) {
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
  on_intensity([this, volumes, seen = 1]() mutable {
    if (++seen == volumes) return stopDataSource(source);
    const int enough = frames_ + 4;
    while (frames_ < enough) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  });
  start();
  EXPECT_TRUE(
      frames_until([&] { return intensities().all().size() + 1 == static_cast<std::size_t>(volumes); }));
  stopDataSource(source);
  // The callback's own stop cannot wait for the thread that it runs on.
  EXPECT_NE(pending_error(), "(none)");
}

bool uniform(const std::vector<float>& voxels) {
  return std::all_of(voxels.begin(), voxels.end(), [&](float voxel) { return voxel == voxels.front(); });
}

}  // namespace oct::test
