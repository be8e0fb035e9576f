// The arithmetic of the B-scan display on the CPU, written from its formulas.
#pragma once

#include <cstdint>
#include <vector>

#include "oct_rendering/oct_rendering.h"
#include "support/pictures.h"

namespace oct::test {

// Depth is fastest in memory.
struct Image {
  int depth = 0;
  int a_scans = 0;
  std::vector<float> samples;

  float at(int z, int x) const {
    return samples[static_cast<std::size_t>(x) * static_cast<std::size_t>(depth) +
                   static_cast<std::size_t>(z)];
  }
};

struct Overlay {
  std::vector<std::uint32_t> colormap{0xFF000000U, 0xFFFFFFFFU};
  double lower = 0.0;
  double upper = 1.0;
};

struct Scene {
  Image image;
  int width = 0;  // of the viewport
  int height = 0;
  std::vector<std::uint32_t> colormap{0xFF000000U, 0xFFFFFFFFU};
  double lower = 0.0;
  double upper = 1.0;
  bool flip = false;
  bool first_blur = false;
  bool pepper = false;
  bool second_blur = false;
  Image overlay_image;
  double threshold = 0.0;
  std::vector<Overlay> overlays;
};

// A picture with gradients, noise, dark specks and values outside the boundaries 0 and 1.
Image test_image(int depth, int a_scans, unsigned seed = 1);

Picture reference_picture(const Scene& scene);

// Gives a renderer all settings of the scene through the exports.
void apply(const Scene& scene, DisplayRenderingHandle renderer);

// A renderer and its target; what a client has.
class DisplayStage {
 public:
  DisplayStage();
  ~DisplayStage();
  DisplayStage(const DisplayStage&) = delete;
  DisplayStage& operator=(const DisplayStage&) = delete;

  Picture draw(const Scene& scene) const;      // settings and a frame
  Picture frame(int width, int height) const;  // as things stand

  const OffscreenTargetHandle target = createOffscreenTarget();
  const DisplayRenderingHandle renderer = createDisplayRendering();
};

}  // namespace oct::test
