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

  std::size_t sliceVoxels() const {
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  }
  float at(int u, int v, int w) const {
    return voxels[static_cast<std::size_t>(w) * sliceVoxels() +
                  static_cast<std::size_t>(v) * static_cast<std::size_t>(width) +
                  static_cast<std::size_t>(u)];
  }
};

struct Coloring {
  std::vector<std::uint32_t> colors{0xFF000000U, 0xFFFFFFFFU};  // R is the lowest byte, A the highest
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
  Volume overlay;           // empty: none
  Volume secondary;         // empty: none; the first axis counts images
  int content = 0;          // of renderOfflineVolume
  bool border = false;      // zeros lie around the volume, as in live volumes; else its edge goes on
  int slicesUploaded = -1;  // -1: the whole volume at once; else this many in one block

  int viewportWidth = 97;
  int viewportHeight = 71;
  double angleX = 0.0;
  double angleY = 0.0;
  std::array<double, 3> translation{};
  std::array<float, 3> range{1.0F, 1.0F, 1.0F};  // axial, lateral, lateral
  double zoom = 40.0;
  bool perspective = true;

  int slices = 128;
  int mode = 0;
  Coloring coloring;
  Coloring overlayColoring;
  Coloring secondaryColoring;
  int secondaryIndex = 0;

  bool clip = false;
  bool clipOpen = false;
  float clipValue = 0.0F;
  // Angles at which the plane was fixed; used when clipFixed.
  bool clipFixed = false;
  double fixedAngleX = 0.0;
  double fixedAngleY = 0.0;

  bool volumeShown = true;
  bool sectional = false;  // slices in place of rays
  std::array<Slice, 3> sections{};
  HeightMap surface;         // empty: none
  Coloring surfaceColoring;  // its boundaries are depths

  bool edges = false;
  bool scaleMarks = false;
  bool box = false;
  bool removedSegment = false;  // the ghost of what the clip plane cuts off

  std::uint32_t foreground = 0xFFFFFFFFU;
  std::uint32_t backgroundBottom = 0x000066FFU;
  std::uint32_t backgroundTop = 0x000019FFU;
};

// Layers, blobs and noise between 0 and 1, in steps that a 16-bit float holds exactly.
Volume testVolume(int width, int height, int depth, unsigned seed = 1);

// A scene of a volume, its viewport and the angles that it is seen from.
VolumeScene sceneOf(Volume volume, int width, int height, double angleX = 0.0, double angleY = 0.0);

// Opaque colours, or an opacity rising with the square of the value up to `opacity`.
std::vector<std::uint32_t> opaqueColors(int count);
std::vector<std::uint32_t> rampColors(int count, double opacity);

// Gives a renderer all settings of the scene through the exports. A scene without surface leaves it the one
// it has.
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
