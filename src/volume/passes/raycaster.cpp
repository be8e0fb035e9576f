#include "volume/passes/raycaster.h"

#include <glm/gtc/type_ptr.hpp>

#include "core/timing_mark.h"
#include "gl/draw_state.h"
#include "gl/opengl_error.h"

namespace oct {
namespace {

bool secondarySliceExists(const VolumeFrame& frame) {
  const int index = frame.settings.secondarySliceIndex;
  return frame.source.secondary != 0 && index >= 0 && index < frame.source.secondarySliceCount;
}

// The box's faces look outwards where the model is mirrored along an odd number of axes, as a range mirrors
// it.
class FaceCulling {
 public:
  explicit FaceCulling(const Camera& camera) {
    const bool mirrored = glm::determinant(glm::mat3(camera.modelview)) < 0.0F;
    glFrontFace(mirrored ? GL_CCW : GL_CW);
    glEnable(GL_CULL_FACE);
  }
  ~FaceCulling() {
    glDisable(GL_CULL_FACE);
    glCullFace(GL_BACK);
    glFrontFace(GL_CCW);
  }
  FaceCulling(const FaceCulling&) = delete;
  FaceCulling& operator=(const FaceCulling&) = delete;
};

}  // namespace

void Raycaster::release() {
  backFaces_.release();
  cutFace_.release();
}

void Raycaster::draw(const VolumeFrame& frame, Box& box) {
  const TimingMark mark("render_raycasting::drawing");
  const VolumeMode mode = frame.settings.volumeMode;
  if (!frame.boxFilled()) return;
  if (mode == VolumeMode::dualColoring && !secondarySliceExists(frame)) return;
  const RaycastingProgram& program = frame.programs.raycastingOf(mode, frame.source.overlayPresent);
  if (!frame.clipPlane.cutFace().empty()) cutFace_.setVertices(frame.clipPlane.cutFace());

  const FaceCulling culling(frame.camera);
  backFaces_.draw(frame, box, cutFace_);
  setUniforms(program, frame);
  drawFrontFaces(program, frame, box);
  gl::throwOnGLError("render_raycasting::drawing");
}

void Raycaster::setUniforms(const RaycastingProgram& program, const VolumeFrame& frame) const {
  useVolumeProgram(program, frame);
  bindVolumeTexture(volume_unit::back, GL_TEXTURE_2D, backFaces_.texture());
  glUniform1i(program.ray().backTex, volume_unit::back);
  glUniform1i(program.ray().slices, frame.settings.slices);
  glUniform1f(program.ray().stepSize, 1.7320508F / static_cast<float>(frame.settings.slices));
  glUniform4fv(program.ray().clipPlane, 1, glm::value_ptr(frame.clipPlane.plane()));
  if (frame.settings.volumeMode == VolumeMode::dualColoring) setSecondary(program, frame);
}

void Raycaster::setSecondary(const RaycastingProgram& program, const VolumeFrame& frame) const {
  const TimingMark mark("render_raycasting::drawing secondary texture");
  const VolumeColormap& colormap = frame.colormaps.at(ColormapRole::secondary);
  bindVolumeTexture(volume_unit::color2, GL_TEXTURE_1D, colormap.texture());
  bindVolumeTexture(volume_unit::secondary, GL_TEXTURE_3D, frame.source.secondary);
  const auto& at = program.at();
  glUniform1i(at.colorTex2, volume_unit::color2);
  glUniform1i(at.secondaryTex, volume_unit::secondary);
  glUniform1f(at.lowerValue2, colormap.lower());
  glUniform1f(at.upperValue2, colormap.upper());
  glUniform1f(at.secondarySlice, (static_cast<float>(frame.settings.secondarySliceIndex) + 0.5F) /
                                     static_cast<float>(frame.source.secondarySliceCount));
  gl::throwOnGLError("render_raycasting::drawing secondary texture");
}

void Raycaster::drawFrontFaces(const RaycastingProgram& program, const VolumeFrame& frame, Box& box) {
  const gl::Blending blending;
  glEnable(GL_DEPTH_TEST);
  // Nothing that is drawn before lies in front of the volume. A test against the far side would lose the
  // box's rim, where the two sides are closer to each other than the polygon offset.
  glDepthFunc(GL_ALWAYS);
  glCullFace(GL_BACK);
  box.draw(frame.filledEnd);
  const auto corners = static_cast<GLsizei>(frame.clipPlane.cutFace().size());
  if (corners > 0 && !frame.clipPlane.open_cut() && frame.cutFacesViewer()) {
    // Points of the plane itself; rounding must not clip them. Each triangle comes in both windings, of which
    // one is culled.
    glUniform4f(program.ray().clipPlane, 0.0F, 0.0F, 0.0F, 0.0F);
    cutFace_.draw(GL_TRIANGLES, 0, corners);
  }
  glDepthFunc(GL_LEQUAL);
}

}  // namespace oct
