// What clients set on a volume renderer, apart from what the scene elements keep themselves.
#pragma once

#include <cstdint>

#include <glm/glm.hpp>

#include "gl/gl_names.h"
#include "volume/layout/camera.h"

namespace oct {

enum class RenderingMode { raycasting = 0, sectional_view = 1 };
enum class VolumeMode { normal = 0, maximum = 1, mean = 2, dual_coloring = 3 };

struct FrameFlags {
  bool edges = true;  // the twelve of the box
  bool scale_marks = true;
  bool box = true;  // the translucent one
};

struct VolumeSettings {
  View view;
  Range range;
  int slices = 128;
  RenderingMode rendering_mode = RenderingMode::raycasting;
  VolumeMode volume_mode = VolumeMode::normal;
  bool remove_segment = false;
  FrameFlags frame;
  bool render_volume = false;
  bool render_surface = false;
  int secondary_slice_index = 0;
  glm::vec4 background_top{0.0F, 0.0F, 25.0F / 255.0F, 1.0F};
  glm::vec4 background_bottom{0.0F, 0.0F, 102.0F / 255.0F, 1.0F};
  glm::vec4 foreground{1.0F};
};

// What the owner of the volume supplies. The textures stay the owner's.
struct VolumeSource {
  GLuint volume = 0;
  GLuint overlay = 0;
  bool overlay_present = false;
  GLuint secondary = 0;
  int secondary_slice_count = 0;
  bool main_colormap_is_overlay = false;  // colours the volume by the overlay's colour map and boundaries
  int slice_count = 0;                    // parts in which the volume fills
  float filled_fraction = 1.0F;
  std::uint64_t revision = 0;  // counts up with every change of the volume's or the overlay's voxels
};

// 0xRRGGBBAA; alpha is always 1.
glm::vec4 unpacked_color(std::uint32_t color);

}  // namespace oct
