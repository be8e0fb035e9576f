#include "volume/frame/volume_program.h"

#include "core/timing_mark.h"
#include "gl/opengl_error.h"

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
  use();
  glUniform1i(locations_.volumeTex, volume_unit::volume);
  glUniform1i(locations_.colorTex, volume_unit::color);
  glUniform1i(locations_.volumeOverlayTex, volume_unit::overlay);
  glUniform1i(locations_.colorOverlayTex, volume_unit::overlay_color);
  glUniform1i(locations_.colorTex2, volume_unit::color2);
  glUniform1i(locations_.secondaryTex, volume_unit::secondary);
  gl::throwOnGLError("VolumeRenderingProgram::load");
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
  locations_.firstPixel = uniform("firstPixel");
  glUniform1i(locations_.backTex, volume_unit::surface);
  glUniform1i(locations_.emptyTex, volume_unit::empty);
  glUniform1i(locations_.sampleColorTex, volume_unit::sample_color);
  gl::throwOnGLError("RaycastingProgram::load");
}

}  // namespace oct
