#include "live/live_test.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <thread>

#include "live/fast_opengl_volume_renderer.h"
#include "support/test_context.h"
#include "volume/volume_renderer.h"

namespace oct::test {
namespace {

std::function<void()> error_action;
std::function<void()> intensity_action;

}  // namespace

void ToldVolumes::listen_to(LiveDataSourceHandle source) {
  setVolumeCallbackWithUser(
      source,
      [](const float* samples, int depth, int a_scans, int b_scans, unsigned long long index,
         unsigned long long nanoseconds, void* volumes) {
        static_cast<ToldVolumes*>(volumes)->add(
            {{depth, a_scans, b_scans}, {samples, samples + depth * a_scans * b_scans}, index, nanoseconds});
      },
      this);
}

LiveTest::LiveTest() {
  client_errors.clear();
  intensities.clear();
  error_action = intensity_action = nullptr;
  device_.reset();
  setDeviceLibrary(OCT_PATTERN_DEVICE);
  live_ = createLiveRendering();
  setLiveVolumeRenderingRenderer(live_, renderer_);
  setRenderElements(renderer_, 1, 0);
  pending_error();
}

LiveTest::~LiveTest() {
  device_.release();
  clearDataSource(source_);
  frame();
  EXPECT_FALSE(isLiveVolumeRunning(live_));
  clearLiveRendering(live_);
  EXPECT_EQ(device_.objects(), 0);
  EXPECT_EQ(device_.misuses(), 0);
  EXPECT_EQ(pending_error(), "(none)");
}

void LiveTest::make_source() {
  listen_to(createOnlineDataSource(device_.device(), device_.processing(0)));
}

void LiveTest::make_polarization_source() {
  listen_to(createOnlineDataSource_PS(device_.device(), device_.processing(0), device_.processing(1),
                                      device_.polarization()));
}

void LiveTest::listen_to(LiveDataSourceHandle source) {
  source_ = source;
  on_error(nullptr);
  on_intensity(nullptr);
}

void LiveTest::on_intensity(std::function<void()> action) {
  intensity_action = std::move(action);
  setRefIntensityCallbackWithUser(
      source_,
      [](double value, void* values) {
        if (intensity_action) intensity_action();
        static_cast<Recorded<double>*>(values)->add(value);
      },
      &intensities);
}

void LiveTest::on_error(std::function<void()> action) {
  error_action = std::move(action);
  setErrorCallbackWithUser(
      source_,
      [](const char* message, void* messages) {
        if (error_action) error_action();
        static_cast<Recorded<std::string>*>(messages)->add(message);
      },
      &client_errors);
}

Picture LiveTest::frame(int width, int height, LiveVolumeRenderingHandle drawn) {
  Picture picture(width, height);
  beginOffscreenFrame(volume_stage_.target, static_cast<unsigned>(width), static_cast<unsigned>(height));
  renderVolume(drawn);
  read_voxels(drawn);
  finishOffscreenFrame(volume_stage_.target, picture.bytes.data());
  ++frames_;
  return picture;
}

void LiveTest::read_voxels(LiveVolumeRenderingHandle drawn) {
  voxels_.clear();
  const GLuint texture = reinterpret_cast<FastOpenGLVolumeRenderer*>(drawn)->source().volume;
  if (texture == 0) return;
  glBindTexture(GL_TEXTURE_3D, texture);
  GLint size[3] = {};
  const GLenum queries[3] = {GL_TEXTURE_WIDTH, GL_TEXTURE_HEIGHT, GL_TEXTURE_DEPTH};
  for (std::size_t i = 0; i < 3; ++i) glGetTexLevelParameteriv(GL_TEXTURE_3D, 0, queries[i], &size[i]);
  voxels_.resize(static_cast<std::size_t>(size[0]) * static_cast<std::size_t>(size[1]) *
                 static_cast<std::size_t>(size[2]));
  glGetTexImage(GL_TEXTURE_3D, 0, GL_RED, GL_FLOAT, voxels_.data());
  glBindTexture(GL_TEXTURE_3D, 0);
}

bool LiveTest::frames_until(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (std::chrono::steady_clock::now() < end) {
    frame();
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return false;
}

std::vector<std::string> LiveTest::unread_errors() {
  std::vector<std::string> errors;
  std::array<char, 600> text{};
  while (getDataSourceError(source_, text.data(), static_cast<int>(text.size())) != 0) {
    errors.emplace_back(text.data());
  }
  return errors;
}

void LiveTest::run(int volumes) {
  intensities.clear();
  on_intensity([this, volumes, seen = 1]() mutable {
    if (++seen == volumes) return stopDataSource(source_);
    const int enough = frames_ + 4;
    while (frames_ < enough) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  });
  start();
  EXPECT_TRUE(
      frames_until([&] { return intensities.all().size() + 1 == static_cast<std::size_t>(volumes); }));
  stopDataSource(source_);
  // The callback's own stop cannot wait for the thread that it runs on.
  EXPECT_NE(pending_error(), "(none)");
}

bool uniform(const std::vector<float>& voxels_) {
  return std::all_of(voxels_.begin(), voxels_.end(), [&](float voxel) { return voxel == voxels_.front(); });
}

}  // namespace oct::test
