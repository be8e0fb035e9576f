// The scene of the comparison, drawn by a client of the library. Uploaded volumes have half floats as a rule; here
// they get floats, as live volumes and those of the peer have.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include <GL/glew.h>

#include "oct_rendering/oct_rendering.h"
#include "scene.h"

namespace scene = oct::benchmark_scene;

namespace {

PFNGLTEXIMAGE3DPROC define_texture = nullptr;

void GLAPIENTRY define_in_floats(GLenum target, GLint level, GLint format, GLsizei width, GLsizei height,
                                 GLsizei depth, GLint border, GLenum components, GLenum type,
                                 const void* data) {
  define_texture(target, level, format == GL_R16F ? GL_R32F : format, width, height, depth, border,
                 components, type, data);
}

void check() {
  std::array<char, 512> message{};
  if (getRendererError(message.data(), static_cast<int>(message.size())))
    throw std::runtime_error(message.data());
}

std::vector<std::uint32_t> colors_of(const scene::Mode& mode) {
  std::vector<std::uint32_t> colors;
  for (unsigned i = 0; i < 256; ++i) {
    const auto alpha =
        static_cast<std::uint32_t>(std::lround(255.0 * mode.opacity * std::pow(i / 255.0, mode.power)));
    colors.push_back(i | i * i / 255U << 8U | (255U - i) / 2U << 16U | alpha << 24U);
  }
  return colors;
}

double measure(const scene::Volume& volume, const scene::Mode& mode, int side, const std::string& picture) {
  const auto width = static_cast<unsigned>(side);
  OffscreenTargetHandle const target = createOffscreenTarget();
  beginOffscreenFrame(target, width, width);
  VolumeRendererHandle const renderer = createVolumeRenderer();
  initializeVolumeRenderer(renderer);
  if (!define_texture) define_texture = std::exchange(glTexImage3D, define_in_floats);
  OfflineRenderingHandle const offline = createOfflineRendering();
  setOfflineRenderingRenderer(offline, renderer);
  setOfflineAspectRatio(offline, 1.0F, 1.0F, 1.0F);
  allocateOfflineVolume(offline, volume.depth, volume.a_scans, volume.b_scans);
  uploadOfflineVolume(offline, volume.voxels.data());
  setBorder(renderer, 0, 0, 0);
  setRenderBackground(renderer, 0x000033FFU, 0x000033FFU);
  const std::vector<std::uint32_t> colors = colors_of(mode);
  setRendererColormap(renderer, colors.data(), static_cast<int>(colors.size()));
  setRendererColoringBoundaries(renderer, volume.lower, volume.upper);
  const std::string name = mode.name;
  setVolumeMode(renderer, name == "maximum" ? 1 : name == "mean" ? 2 : 0);
  setRenderingSlices(renderer, scene::slices);
  check();

  const double time = scene::time_frames([&](int frame) {
    setAngles(renderer, scene::angle_x, scene::angle_y_of(frame));
    renderOfflineVolume(offline, 0);
    glFinish();
  });
  check();
  std::vector<unsigned char> bgra(std::size_t{width} * width * 4);
  finishOffscreenFrame(target, bgra.data());
  if (!picture.empty()) {
    std::vector<unsigned char> rgb;
    for (std::size_t i = 0; i < bgra.size(); i += 4)
      rgb.insert(rgb.end(), {bgra[i + 2], bgra[i + 1], bgra[i]});
    scene::write_picture(picture, side, rgb);
  }
  beginOffscreenFrame(target, width, width);
  clearOfflineRendering(offline);
  uninitializeVolumeRenderer(renderer);
  deleteVolumeRenderer(renderer);
  finishOffscreenFrame(target, nullptr);
  clearOffscreenTarget(target);
  check();
  return time;
}

}  // namespace

int main(int argc, char** argv) {
  return scene::run(argc, argv, measure);
}
