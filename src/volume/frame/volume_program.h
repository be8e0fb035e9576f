// Programs that sample a volume, with the locations of their uniforms.
#pragma once

#include <string>

#include "gl/shader.h"

namespace oct {

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
    GLint sampleColorTex = -1, lengthScale = -1, lighting = -1, extent = -1;
  };

  void load(const std::string& name, const std::string& vertexSource,
            const std::string& fragmentSource) override;

  const RayLocations& ray() const { return locations_; }

 private:
  RayLocations locations_;
};

}  // namespace oct
