// The first frames of a client that shows a volume of 256 x 256 x 256 voxels at 512 x 512 pixels, with a scale and in
// the modes one after the other. Started and read by benchmark_start.
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include <GL/gl.h>

#include "oct_rendering/oct_rendering.h"
#include "raycast_phantom.h"
#include "start_stages.h"

namespace scene = oct::benchmark_scene;

int main(int argc, char** argv) {
  oct::benchmark_start::Stages stages(argc, argv);
  stages.end("load");

  OffscreenTargetHandle const target = createOffscreenTarget();
  beginOffscreenFrame(target, scene::pixels, scene::pixels);
  stages.end("context");

  VolumeRendererHandle const renderer = createVolumeRenderer();
  initializeVolumeRenderer(renderer);
  stages.end("renderer");

  const std::vector<float> voxels = scene::phantom();
  std::vector<std::uint32_t> colors;
  for (unsigned i = 0; i < 256; ++i)
    colors.push_back(i | i << 8U | i << 16U | static_cast<std::uint32_t>(i * i * 31U / 65025U) << 24U);
  stages.leave_out();

  OfflineRenderingHandle const offline = createOfflineRendering();
  setOfflineRenderingRenderer(offline, renderer);
  setOfflineAspectRatio(offline, 2.0F, 3.0F, 3.0F);
  allocateOfflineVolume(offline, scene::voxels, scene::voxels, scene::voxels);
  uploadOfflineVolume(offline, voxels.data());
  setRendererColormap(renderer, colors.data(), static_cast<int>(colors.size()));
  setRendererColoringBoundaries(renderer, scene::lowerValue, scene::upperValue);
  setAngles(renderer, scene::angle_x, scene::angle_y);
  stages.end("volume");

  std::vector<unsigned char> pixels(std::size_t{scene::pixels} * scene::pixels * 4);
  const auto draw = [&](const char* stage) {
    renderOfflineVolume(offline, 0);
    finishOffscreenFrame(target, pixels.data());
    stages.end(stage);
    beginOffscreenFrame(target, scene::pixels, scene::pixels);
    stages.leave_out();
  };
  draw("first_frame");
  // Another angle, so that nothing that was drawn can be kept.
  const std::array<std::array<const char*, 2>, 3> modes = {
      {{"composite", "composite"}, {"maximum_first", "maximum"}, {"mean_first", "mean"}}};
  double angle = scene::angle_y;
  for (std::size_t mode = 0; mode < modes.size(); ++mode) {
    setVolumeMode(renderer, static_cast<int>(mode));
    for (const char* const stage : modes[mode]) {
      setAngles(renderer, scene::angle_x, angle += 1.0);
      draw(stage);
    }
  }

  std::array<char, 512> message{};
  if (getRendererError(message.data(), static_cast<int>(message.size()))) {
    std::fprintf(stderr, "error: %s\n", message.data());
    return 1;
  }
  std::_Exit(0);  // what follows is not measured
}
