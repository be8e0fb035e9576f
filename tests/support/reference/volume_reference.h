// The picture of a volume scene on the CPU, layer by layer, written from the formulas and sharing nothing
// with the shaders.
#pragma once

#include <utility>
#include <vector>

#include <glm/glm.hpp>

#include "support/volume_scene.h"

namespace oct::test {

// Everything but scale marks. OpenGL lets a driver blend either in full precision or in that of
// the target, that is with eight bits of every layer's colour and opacity. Lines are left out:
// how a driver draws them differs.
struct ReferencePicture {
  Picture picture;              // blended in full precision
  Picture blended_in_target;    // blended in that of the target
  std::vector<bool> near_line;  // pixels that a line may touch
  std::vector<std::pair<glm::dvec2, glm::dvec2>>
      lines;  // of the box, the slices and the clip plane's cut, in pixels
};

ReferencePicture reference_picture(const VolumeScene& scene);

// What lies under a pixel, in voxels (depth, A-scan, B-scan). Of what is seen as strongly as what hides it, or hardly
// seen, either is right.
struct ReferencePick {
  int kind = 0;  // of OctPickKind
  glm::dvec3 voxel{0.0};
  double value = 0.0;
  double step = 0.0;  // of the ray, in voxels
  bool doubtful = false;
};
ReferencePick reference_pick(const VolumeScene& scene, int column, int row);

// Linear between voxels, at a place in voxels.
double reference_value(const Volume& volume, const glm::dvec3& voxel);

// Compares with the closer of the two pictures, where no line may touch. Silhouettes are excepted from
// `nearly`, within its fraction.
testing::AssertionResult agree(const Picture& actual, const ReferencePicture& expected, Tolerance tolerance);

// Whether the foreground's colour is seen all along the lines.
testing::AssertionResult lines_show(const Picture& actual, const ReferencePicture& expected,
                                    const VolumeScene& scene);

}  // namespace oct::test
