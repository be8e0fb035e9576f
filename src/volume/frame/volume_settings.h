// What clients set on a volume renderer, apart from what the scene elements keep themselves.
#pragma once

#include <glm/glm.hpp>

#include <cstdint>

#include "gl/gl_names.h"
#include "volume/layout/camera.h"

namespace oct {

enum class RenderingMode { raycasting = 0, sectionalView = 1 };
enum class VolumeMode { normal = 0, maximum = 1, mean = 2, dualColoring = 3 };

struct FrameFlags {
  bool edges = true;  // the twelve of the box
  bool scaleMarks = true;
  bool box = true;  // the translucent one
};

struct VolumeSettings {
  View view;
  Range range;
  int slices = 128;
  RenderingMode renderingMode = RenderingMode::raycasting;
  VolumeMode volumeMode = VolumeMode::normal;
  bool removeSegment = false;
  FrameFlags frame;
  bool renderVolume = false;
  bool renderSurface = false;
  int secondarySliceIndex = 0;
  glm::vec4 backgroundTop{0.0F, 0.0F, 25.0F / 255.0F, 1.0F};
  glm::vec4 backgroundBottom{0.0F, 0.0F, 102.0F / 255.0F, 1.0F};
  glm::vec4 foreground{1.0F};
};

// What the owner of the volume supplies. The textures stay the owner's.
struct VolumeSource {
  GLuint volume = 0;
  GLuint overlay = 0;
  bool overlayPresent = false;
  GLuint secondary = 0;
  int secondarySliceCount = 0;
  bool mainColormapIsOverlay = false;  // colours the volume by the overlay's colour map and boundaries
  int sliceCount = 0;                  // parts in which the volume fills
  float filledFraction = 1.0F;
  std::uint64_t revision = 0;  // counts up with every change of the volume's or the overlay's voxels
};

// 0xRRGGBBAA; alpha is always 1.
glm::vec4 unpackedColor(std::uint32_t color);

}  // namespace oct
