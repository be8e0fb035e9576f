#include "volume/frame/volume_program.h"

#include "core/timing_mark.h"

namespace oct {

void VolumeRenderingProgram::load(const std::string& name, const std::string& vertexSource,
                                  const std::string& fragmentSource) {
  const TimingMark mark("VolumeRenderingProgram::load");
  load_to_program(name, vertexSource, fragmentSource);
  locations_.lowerValue = uniform("lowerValue");
  locations_.upperValue = uniform("upperValue");
  locations_.overlayValues = uniform("overlayValues");
  locations_.volumeTex = uniform("volumeTex");
  locations_.volumeOverlayTex = uniform("volumeOverlayTex");
  locations_.colorTex = uniform("colorTex");
  locations_.colorOverlayTex = uniform("colorOverlayTex");
  locations_.lowerValue2 = uniform("lowerValue2");
  locations_.upperValue2 = uniform("upperValue2");
  locations_.colorTex2 = uniform("colorTex2");
  locations_.secondaryTex = uniform("secondaryTex");
  locations_.secondarySlice = uniform("secondarySlice");
  locations_.modelview = uniform("modelview");
  locations_.projection = uniform("projection");
}

void RaycastingProgram::load(const std::string& name, const std::string& vertexSource,
                             const std::string& fragmentSource) {
  VolumeRenderingProgram::load(name, vertexSource, fragmentSource);
  locations_.backTex = uniform("backTex");
  locations_.slices = uniform("slices");
  locations_.stepSize = uniform("stepSize");
  locations_.clipPlane = uniform("clipPlane");
  locations_.eye = uniform("eye");
  locations_.endsOnSurface = uniform("endsOnSurface");
  locations_.boxEnd = uniform("boxEnd");
  locations_.emptyTex = uniform("emptyTex");
  locations_.grid = uniform("grid");
  locations_.brickScale = uniform("brickScale");
  locations_.brickOffset = uniform("brickOffset");
  locations_.limitCount = uniform("limitCount");
  locations_.limits = uniform("limits");
  locations_.sampleColorTex = uniform("sampleColorTex");
  locations_.lengthScale = uniform("lengthScale");
  locations_.lighting = uniform("lighting");
  locations_.extent = uniform("extent");
}

}  // namespace oct
