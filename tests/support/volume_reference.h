// A ray caster on the CPU, written from the formulas of volume rendering and sharing nothing with the
// shaders.
#pragma once

#include <vector>

#include "support/volume_scene.h"

namespace oct::test {

struct ReferencePicture {
  Picture picture;
  std::vector<bool> nearCut;  // pixels that the border of the clip plane's cut may touch
};

ReferencePicture referencePicture(const VolumeScene& scene);

// Compares where the border of the cut does not touch. Silhouettes are excepted from `nearly`, within its
// fraction.
testing::AssertionResult agree(const Picture& actual, const ReferencePicture& expected, Tolerance tolerance);

}  // namespace oct::test
