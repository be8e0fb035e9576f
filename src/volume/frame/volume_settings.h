// What clients set on a volume renderer, and what the owner of a volume supplies.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <glm/glm.hpp>

#include "core/extent.h"
#include "gl/colormap.h"
#include "gl/slice_revisions.h"
#include "volume/layout/camera.h"
#include "volume/layout/clip_plane.h"
#include "volume/layout/sections.h"
#include "volume/layout/surface_mesh.h"

namespace oct {

class BrickMaxima;
class EmptySpace;

enum class RenderingMode { raycasting = 0, sectional_view = 1 };
enum class VolumeMode { normal = 0, maximum = 1, mean = 2, dual_coloring = 3 };
enum class ColormapRole : std::size_t { main, overlay, secondary, surface };

struct FrameFlags {
  bool edges = true;  // the twelve of the box
  bool scale_marks = true;
  bool box = true;  // the translucent one

  bool operator==(const FrameFlags&) const = default;
};

// Of the samples of a composite; all zero: none.
struct Lighting {
  float ambient = 0.0F;
  float diffuse = 0.0F;
  float specular = 0.0F;

  // Ambient light alone, of 1, leaves all colours as they are.
  bool changes_colors() const {
    return diffuse != 0.0F || specular != 0.0F || (ambient != 0.0F && ambient != 1.0F);
  }
  bool operator==(const Lighting&) const = default;
};

struct ColormapSettings {
  RevisedColormap colors;
  float lower = 0.0F;
  float upper = 1.0F;

  bool operator==(const ColormapSettings&) const = default;
};

// A frame draws with a copy of its own, made at its beginning: what is large is shared and never changed.
struct VolumeSettings {
  View view;
  Range range;
  int slices = 128;
  RenderingMode rendering_mode = RenderingMode::raycasting;
  VolumeMode volume_mode = VolumeMode::normal;
  Lighting lighting;
  bool ray_jitter = false;
  double opacity_length =
      0.0;  // of tissue, in millimetres, that has the colour map's opacity; 0: it is a step's
  bool remove_segment = false;
  FrameFlags frame;
  bool render_volume = false;
  bool render_surface = false;
  int secondary_slice_index = 0;
  Sections sections{};
  ClipPlaneSettings clip_plane;
  glm::vec4 background_top{0.0F, 0.0F, 25.0F / 255.0F, 1.0F};
  glm::vec4 background_bottom{0.0F, 0.0F, 102.0F / 255.0F, 1.0F};
  glm::vec4 foreground{1.0F};
  // By role. They live from init to uninit.
  std::optional<std::array<ColormapSettings, 4>> colormaps;
  std::shared_ptr<const SurfaceMesh> surface;  // null: there is none
  double surface_scale = 1.0;                  // of the depths of the data

  bool operator==(const VolumeSettings&) const = default;
};

// Why a source has no volume to show, or an empty one.
enum class VolumeLack { none, not_allocated, no_voxels, not_uploaded, no_overlay, no_live_volume };

// What the owner of a volume supplies for one frame, all of it every time. The textures stay the owner's.
struct VolumeSource {
  GLuint volume = 0;
  GLuint overlay = 0;
  bool overlay_present = false;
  GLuint secondary = 0;
  int secondary_slice_count = 0;
  bool main_colormap_is_overlay = false;  // colours the volume by the overlay's colour map and boundaries
  int slice_count = 0;                    // parts in which the volume fills
  float filled_fraction = 1.0F;
  std::optional<Range> range;  // takes the place of the client's
  // Which slices of the textures changed; null where there is no texture.
  std::shared_ptr<const gl::SliceRevisions> volume_revisions;
  std::shared_ptr<const gl::SliceRevisions> overlay_revisions;
  std::shared_ptr<const gl::SliceRevisions> secondary_revisions;
  // What rays may jump over: all of it the owner's, made ready by the frame. Null: nothing is known.
  BrickMaxima* volume_maxima = nullptr;
  BrickMaxima* overlay_maxima = nullptr;
  EmptySpace* empty_space = nullptr;
  // For those who ask about the frame.
  VolumeExtent extent;  // of the volume, or of the overlay that takes its place
  VolumeLack lack = VolumeLack::none;
  std::shared_ptr<const std::string> refusal;  // what the last allocation failed with; null: it did not

  bool operator==(const VolumeSource&) const = default;
};

// 0xRRGGBBAA; alpha is always 1.
glm::vec4 unpacked_color(std::uint32_t color);

}  // namespace oct
