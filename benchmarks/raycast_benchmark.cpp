// Ray casting, 512 x 512 pixels through 256 x 256 x 256 voxels in 128 slices, by the library's programs
// and by the algorithm written down plainly, in turn, in one context, on one volume. CPU time of all
// threads, which is steadier than wall time on a shared machine; "ratio" is the result. "differing"
// counts pixels that are not equal.
//
// Arguments: mode (0 soft compositing, 1 maximum, 2 mean, 3 hard compositing), 16-bit voxels or not.
#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "gl/texture_3d.h"
#include "literal_raycasting.h"
#include "median.h"
#include "oct_rendering/oct_rendering.h"
#include "raycast_phantom.h"
#include "shaders.h"
#include "volume/passes/raycaster.h"
#include "volume/skipping/empty_space.h"

using oct::benchmark_scene::Median;

namespace {

using oct::benchmark_scene::phantom;
using oct::benchmark_scene::pixels;
using oct::benchmark_scene::voxels;

oct::Colormap ramp(double opacity, double power) {
  oct::Colormap colors;
  for (unsigned i = 0; i < 256; ++i) {
    const auto alpha = static_cast<unsigned>(std::lround(255.0 * opacity * std::pow(i / 255.0, power)));
    colors.push_back(i | i * i / 255U << 8U | (255U - i) / 2U << 16U | alpha << 24U);
  }
  return colors;
}

double cpu_milliseconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

// One scene, drawn by either set of programs.
class Scene {
 public:
  Scene(int mode, bool half_float) {
    settings_.volume_mode = mode == 3 ? oct::VolumeMode::normal : static_cast<oct::VolumeMode>(mode);
    settings_.view.angle_x = static_cast<float>(oct::benchmark_scene::angle_x);
    settings_.view.angle_y = static_cast<float>(oct::benchmark_scene::angle_y);
    settings_.render_volume = true;
    const std::vector<float> data = phantom();
    volume_.allocate({voxels, voxels, voxels}, half_float ? GL_R16F : GL_R32F, "phantom", data.data());
    source_.volume = volume_.get();
    maxima_.emplace(oct::VolumeExtent{voxels, voxels, voxels}, 4,
                    half_float ? oct::BrickTexture::edges_in_half_float : oct::BrickTexture::edges);
    for (int k = 0; k < voxels; ++k)
      maxima_->take_b_scan(k, {data.data() + std::size_t{voxels} * voxels * std::size_t(k), voxels});
    source_.volume_maxima = &*maxima_;
    source_.empty_space = &empty_;
    oct::ColormapSettings& coloring =
        settings_.colormaps.emplace()[static_cast<std::size_t>(oct::ColormapRole::main)];
    coloring.colors.set(mode == 3 ? ramp(1.0, 1.0) : ramp(0.12, 2.0));
    coloring.lower = oct::benchmark_scene::lowerValue;
    coloring.upper = oct::benchmark_scene::upperValue;
    colormaps_.update(settings_);
    ours_.load(settings_);
    const char* const texts[] = {oct::literal::compositing, oct::literal::maximum, oct::literal::mean,
                                 oct::literal::compositing};
    plain_.emplace(texts[mode], oct::Viewport{pixels, pixels});
  }

  void draw(bool ours) {
    const oct::VolumeFrame frame{settings_,
                                 source_,
                                 colormaps_,
                                 ours_,
                                 clip_plane_,
                                 settings_.range,
                                 oct::camera_of(settings_.view, settings_.range, {pixels, pixels}),
                                 oct::FilledBox(1.0F)};
    glClearColor(0.0F, 0.0F, 0.2F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    ours ? raycaster_.draw(frame, box_, surface_) : plain_->draw(frame, box_);
    glFinish();
  }

 private:
  oct::VolumeSettings settings_;
  oct::VolumeSource source_;
  oct::VolumeColormaps colormaps_;
  oct::VolumePrograms ours_;
  std::optional<oct::literal::Raycaster> plain_;
  oct::ClipPlane clip_plane_;
  oct::Raycaster raycaster_;
  oct::Box box_;
  oct::Surface surface_;
  oct::gl::Texture3D volume_;
  std::optional<oct::BrickMaxima> maxima_;
  oct::EmptySpace empty_;
};

void raycasting(benchmark::State& state) {
  const OffscreenTargetHandle target = createOffscreenTarget();
  beginOffscreenFrame(target, pixels, pixels);
  GLint framebuffer = 0;
  glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &framebuffer);
  glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(framebuffer));
  std::array<std::vector<unsigned char>, 2> pictures;
  for (auto& picture : pictures) picture.resize(std::size_t{pixels} * pixels * 4);
  {
    Scene scene(static_cast<int>(state.range(0)), state.range(1) != 0);
    std::array<Median, 2> cpu;
    for (auto _ : state) {
      for (const bool ours : {false, true}) {
        const double start = cpu_milliseconds();
        scene.draw(ours);
        cpu[ours ? 1 : 0].add(cpu_milliseconds() - start);
        glReadPixels(0, 0, pixels, pixels, GL_BGRA, GL_UNSIGNED_BYTE, pictures[ours ? 1 : 0].data());
      }
    }
    state.counters["ours_ms"] = cpu[1].value();
    state.counters["literal_ms"] = cpu[0].value();
    state.counters["ratio"] = cpu[1].value() / cpu[0].value();
  }
  int differing = 0;
  int worst = 0;
  for (std::size_t i = 0; i < pictures[0].size(); i += 4) {
    int apart = 0;
    for (std::size_t c = 0; c < 4; ++c)
      apart = std::max(apart, std::abs(pictures[0][i + c] - pictures[1][i + c]));
    differing += apart > 0 ? 1 : 0;
    worst = std::max(worst, apart);
  }
  state.counters["differing"] = differing;
  state.counters["worst_level"] = worst;
  finishOffscreenFrame(target, nullptr);
  clearOffscreenTarget(target);
}
BENCHMARK(raycasting)
    ->ArgsProduct({{0, 3, 1, 2}, {0, 1}})
    ->ArgNames({"mode", "half"})
    ->Iterations(15)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
