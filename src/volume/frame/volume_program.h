// Programs that sample a volume, with the locations of their uniforms.
#pragma once

#include <string>

#include "gl/shader.h"

namespace oct {

// Texture units of the volume programs. Samplers that no program has both of share one: a unit has a texture of each
// target, and every unit is asked for and given back in every frame (gl::DrawingState).
namespace volume_unit {
constexpr GLint volume = 0;
constexpr GLint color = 1;
constexpr GLint sample_color = 1;
constexpr GLint surface = 2;
constexpr GLint overlay = 3;
constexpr GLint secondary = 3;
constexpr GLint overlay_color = 4;
constexpr GLint color2 = 4;
constexpr GLint empty = 5;
}  // namespace volume_unit

// A program declares only the uniforms it uses. The others have location -1, which OpenGL ignores when they
// are set, so that a pass sets all of them regardless of the variant.
class VolumeRenderingProgram : public gl::Shader {
 public:
  struct Locations {
    GLint lowerValue = -1, upperValue = -1, overlayValues = -1, volumeTex = -1, volumeOverlayTex = -1,
          colorTex = -1, colorOverlayTex = -1, lowerValue2 = -1, upperValue2 = -1, colorTex2 = -1,
          secondaryTex = -1, secondarySlice = -1;
    GLint modelview = -1, projection = -1;
  };

  virtual void load(const std::string& name, const std::string& vertexSource,
                    const std::string& fragmentSource);

  const Locations& at() const { return locations_; }

 private:
  Locations locations_;
};

class RaycastingProgram : public VolumeRenderingProgram {
 public:
  struct RayLocations {
    GLint backTex = -1, slices = -1, stepSize = -1, clipPlane = -1, eye = -1, endsOnSurface = -1, boxEnd = -1;
    GLint emptyTex = -1, grid = -1, brickScale = -1, brickOffset = -1, limitCount = -1, limits = -1;
    GLint sampleColorTex = -1, lengthScale = -1, lighting = -1, extent = -1, firstPixel = -1;
  };

  void load(const std::string& name, const std::string& vertexSource,
            const std::string& fragmentSource) override;

  const RayLocations& ray() const { return locations_; }

 private:
  RayLocations locations_;
};

}  // namespace oct
