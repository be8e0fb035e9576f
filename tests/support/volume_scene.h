// A volume and everything that a frame of it depends on, and its picture by the library.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "oct_rendering/oct_rendering.h"
#include "support/pictures.h"

namespace oct::test {

// The first axis is the fastest in memory.
struct Volume {
  int width = 0;   // axial
  int height = 0;  // lateral
  int depth = 0;   // lateral, the slices
  std::vector<float> voxels;

  std::size_t slice_voxels() const {
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  }
  float at(int u, int v, int w) const {
    return voxels[static_cast<std::size_t>(w) * slice_voxels() +
                  static_cast<std::size_t>(v) * static_cast<std::size_t>(width) +
                  static_cast<std::size_t>(u)];
  }
};

// A ramp from black to white, which renderers start with.
std::vector<std::uint32_t> grey_colors();

struct Coloring {
  std::vector<std::uint32_t> colors = grey_colors();  // R is the lowest byte, A the highest
  double lower = 0.0;
  double upper = 1.0;
};

// Depths row by row, of which `scale` is the whole box.
struct HeightMap {
  int width = 0;
  int height = 0;
  double scale = 1.0;
  std::vector<float> values;
};

struct Slice {
  bool shown = true;
  float position = 0.5F;
};

struct VolumeScene {
  Volume volume;
  Volume overlay;            // empty: none
  Volume secondary;          // empty: none; the first axis counts images
  int content = 0;           // of renderOfflineVolume
  bool border = false;       // zeros lie around the volume, as in live volumes; else its edge goes on
  int slices_uploaded = -1;  // -1: the whole volume at once; else this many in one block

  int viewport_width = 97;
  int viewport_height = 71;
  double angle_x = 0.0;
  double angle_y = 0.0;
  std::array<double, 3> translation{};
  std::array<float, 3> range{1.0F, 1.0F, 1.0F};  // axial, lateral, lateral
  double zoom = 40.0;
  bool perspective = true;

  int slices = 128;
  std::array<double, 3> lighting{};  // ambient, diffuse, specular
  bool jitter = false;
  double opacity_length = 0.0;
  int mode = 0;
  Coloring coloring;
  Coloring overlay_coloring;
  Coloring secondary_coloring;
  int secondary_index = 0;

  bool clip = false;
  bool clip_open = false;
  float clip_value = 0.0F;
  // Angles at which the plane was fixed; used when clip_fixed.
  bool clip_fixed = false;
  double fixed_angle_x = 0.0;
  double fixed_angle_y = 0.0;

  bool volume_shown = true;
  bool sectional = false;  // slices in place of rays
  std::array<Slice, 3> sections{};
  HeightMap surface;          // empty: none
  Coloring surface_coloring;  // its boundaries are depths

  bool edges = false;
  bool scale_marks = false;
  bool box = false;
  bool removed_segment = false;  // the ghost of what the clip plane cuts off

  std::uint32_t foreground = 0xFFFFFFFFU;
  std::uint32_t background_bottom = 0x000066FFU;
  std::uint32_t background_top = 0x000019FFU;
};

// Layers, blobs and noise between 0 and 1, in steps that a 16-bit float holds exactly.
Volume test_volume(int width, int height, int depth, unsigned seed = 1);

// A scene of a volume, its viewport and the angles that it is seen from.
VolumeScene scene_of(Volume volume, int width, int height, double angle_x = 0.0, double angle_y = 0.0);

// Opaque colours, or an opacity rising with the square of the value up to `opacity`.
std::vector<std::uint32_t> opaque_colors(int count);
std::vector<std::uint32_t> ramp_colors(int count, double opacity);

// Gives a renderer all settings of the scene through the exports. A scene without
// surface leaves it the one it has.
void apply(const VolumeScene& scene, VolumeRendererHandle renderer);

// Allocates and uploads the scene's data.
void upload(const VolumeScene& scene, OfflineRenderingHandle offline);

// A target, a renderer and an offline object that belong together; what a client has.
class VolumeStage {
 public:
  VolumeStage();
  ~VolumeStage();
  VolumeStage(const VolumeStage&) = delete;
  VolumeStage& operator=(const VolumeStage&) = delete;

  void prepare(const VolumeScene& scene);                   // settings and data
  Picture draw(const VolumeScene& scene);                   // and a frame
  Picture frame(int width, int height, int content) const;  // as things stand
  Picture frame() const;                                    // the same, of the last scene's size and content
  void restart() const;  // gives the renderer's OpenGL objects back and makes new ones

  OffscreenTargetHandle target = nullptr;
  VolumeRendererHandle renderer = nullptr;
  OfflineRenderingHandle offline = nullptr;

 private:
  int width_ = 0;
  int height_ = 0;
  int content_ = 0;
};

}  // namespace oct::test
