// A ray caster on the CPU, written from the formulas of volume rendering and sharing nothing with the
// shaders.
#pragma once

#include <glm/glm.hpp>

#include <vector>

#include "support/volume_scene.h"

namespace oct::test {

// What lies around the voxels: the outermost ones go on, zeros, or the first axis begins anew.
enum class Surroundings { edge, zeros, firstAxisRepeats };

// Linear between voxels at a place in texture coordinates.
double voxelAt(const Volume& volume, const glm::dvec3& texture,
               Surroundings surroundings = Surroundings::edge);

// OpenGL lets a driver blend either in full precision or in that of the target, that is with the eight bits
// of a ray's rounded colour and opacity.
struct ReferencePicture {
  Picture picture;            // blended in full precision
  Picture blendedInTarget;    // blended in that of the target
  std::vector<bool> nearCut;  // pixels that the border of the clip plane's cut may touch
};

ReferencePicture referencePicture(const VolumeScene& scene);

// Compares with the closer of the two pictures, where the border of the cut does not touch. Silhouettes are
// excepted from `nearly`, within its fraction.
testing::AssertionResult agree(const Picture& actual, const ReferencePicture& expected, Tolerance tolerance);

}  // namespace oct::test
