#include "volume/volume_renderer.h"

#include <glm/gtc/type_ptr.hpp>

#include <array>

#include "core/object_lock.h"
#include "core/timing_mark.h"
#include "gl/opengl_error.h"
#include "gl/context/opengl_loader.h"

namespace oct {
namespace {

Viewport currentViewport() {
  std::array<GLint, 4> viewport{};
  glGetIntegerv(GL_VIEWPORT, viewport.data());
  return {viewport[2], viewport[3]};
}

void setPolygonOffset(bool enabled, float factor, float units) {
  for (const GLenum kind : {GL_POLYGON_OFFSET_FILL, GL_POLYGON_OFFSET_LINE, GL_POLYGON_OFFSET_POINT}) {
    if (enabled) {
      glEnable(kind);
    } else {
      glDisable(kind);
    }
  }
  glPolygonOffset(factor, units);
}

// Leaves no program and no texture of a frame bound, and OpenGL's default state, however the frame ends.
class FrameBindings {
 public:
  FrameBindings() = default;
  ~FrameBindings() {
    for (const GLint unit : {volume_unit::overlay, volume_unit::secondary, volume_unit::volume}) {
      bindVolumeTexture(unit, GL_TEXTURE_3D, 0);
    }
    for (const GLint unit : {volume_unit::overlayColor, volume_unit::color2, volume_unit::color}) {
      bindVolumeTexture(unit, GL_TEXTURE_1D, 0);
    }
    bindVolumeTexture(volume_unit::back, GL_TEXTURE_2D, 0);
    glActiveTexture(GL_TEXTURE0);
    glUseProgram(0);
    glDisable(GL_BLEND);
    glDisable(GL_CULL_FACE);
    glDisable(GL_DEPTH_TEST);
    setPolygonOffset(false, 0.0F, 0.0F);
    glClearDepth(1.0);
    glDepthFunc(GL_LESS);
    glDepthMask(GL_TRUE);
  }
  FrameBindings(const FrameBindings&) = delete;
  FrameBindings& operator=(const FrameBindings&) = delete;
};

}  // namespace

VolumeRenderer::VolumeRenderer() {
  setSectionalView({Section{}, Section{}, Section{}});
}

VolumeRenderer::~VolumeRenderer() {
  const TimingMark mark("~VolumeRenderer");
  release();
}

void VolumeRenderer::init() {
  const ObjectLock lock(this);
  const TimingMark mark("VolumeRenderer::init");
  gl::requireOpenGL("Failed to initialize OpenGL.");
  release();
  try {
    programs_.loadScene();
    raycaster_.create();
    programs_.loadRaycasting();
    colormaps_.create();
    gl::throwOnGLError("VolumeRenderer::init");
  } catch (...) {
    release();
    throw;
  }
}

void VolumeRenderer::uninit() {
  const ObjectLock lock(this);
  const TimingMark mark("VolumeRenderer::uninit");
  release();
  colormaps_.release();
}

void VolumeRenderer::release() {
  programs_.unload();
  background_.release();
  box_.release();
  raycaster_.release();
  elements_.release();
  surface_.release();
}

void VolumeRenderer::render() {
  const ObjectLock lock(this);
  const TimingMark mark("VolumeRenderer::render");
  gl::requireOpenGL();
  const FrameBindings bindings;
  const VolumeFrame frame = beginFrame();
  if (frame.camera.viewport.width <= 0 || frame.camera.viewport.height <= 0) return;
  colormaps_.uploadChanged();
  clearTarget();
  drawBackground();
  beginDepth();
  drawBox(frame);
  drawBehindVolume(frame);
  drawVolume(frame);
  drawSurface(frame);
  drawInFront(frame);
  finishFrame();
}

VolumeFrame VolumeRenderer::beginFrame() {
  const TimingMark mark("render: init");
  VolumeFrame frame{settings_, source_, colormaps_, programs_, clipPlane_, {}, 1.0F};
  frame.camera = cameraOf(settings_.view, settings_.range, currentViewport());
  frame.filledEnd = filledEnd(source_.filledFraction, source_.sliceCount);
  clipPlane_.update(settings_.view);
  gl::throwOnGLError("render: init");
  return frame;
}

void VolumeRenderer::clearTarget() {
  glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
  glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
  glClear(GL_COLOR_BUFFER_BIT);
  glClearDepth(0.0);
  setPolygonOffset(false, 0.0F, 0.0F);
}

void VolumeRenderer::drawBackground() {
  background_.setColors(settings_.backgroundBottom, settings_.backgroundTop);
  background_.draw(programs_.background);
}

// Depth starts at the eye: what is drawn first is what lies farthest back.
void VolumeRenderer::beginDepth() {
  glDepthMask(GL_TRUE);
  glClear(GL_DEPTH_BUFFER_BIT);
  glEnable(GL_DEPTH_TEST);
  glDepthFunc(GL_GEQUAL);
  setPolygonOffset(true, -1.0F, -4.0F);
}

// The far side of the box, in depth alone: what lies before it is drawn after it.
void VolumeRenderer::drawBox(const VolumeFrame& frame) {
  drawFarSide(frame);
  if (frame.volumeShown()) elements_.drawTranslucent(frame, ElementPass::behind);
}

void VolumeRenderer::drawFarSide(const VolumeFrame& frame) {
  const EmptyProgram& program = programs_.empty;
  program.use();
  glUniformMatrix4fv(program.modelview, 1, GL_FALSE, glm::value_ptr(frame.camera.modelview));
  glUniformMatrix4fv(program.projection, 1, GL_FALSE, glm::value_ptr(frame.camera.projection));
  glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
  box_.draw(frame.boxFilled() ? frame.filledEnd : 1.0F);
  glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
}

void VolumeRenderer::drawBehindVolume(const VolumeFrame& frame) {
  glDepthMask(GL_FALSE);
  elements_.drawFrame(frame, ElementPass::behind);
  if (!frame.volumeShown()) return;
  if (settings_.renderingMode == RenderingMode::sectionalView) {
    elements_.sectionalView.drawOutline(frame);
  } else if (clipPlane_.enabled()) {
    elements_.drawClipPlaneBorder(frame, ElementPass::behind);
  }
}

void VolumeRenderer::drawVolume(const VolumeFrame& frame) {
  glDepthMask(GL_TRUE);
  glDepthFunc(GL_LEQUAL);
  if (!frame.volumeShown()) return;
  if (settings_.renderingMode == RenderingMode::sectionalView) {
    drawSections(frame);
    return;
  }
  if (clipPlane_.enabled()) {
    glPolygonOffset(0.0F, 0.0F);
    elements_.drawClipPlaneBorder(frame, ElementPass::behind);
  }
  glPolygonOffset(1.0F, 4.0F);
  if (settings_.removeSegment) elements_.drawRemovedSegment(frame, ElementPass::behind);
  raycaster_.draw(frame, box_);
  if (settings_.removeSegment) elements_.drawRemovedSegment(frame, ElementPass::inFront);
  // The rays covered the border's part on the cut.
  if (clipPlane_.enabled()) elements_.drawClipPlaneBorder(frame, ElementPass::inFront);
}

// A far side that stands towards the eye, as it does until here, hides slices that lie on it or close by.
void VolumeRenderer::drawSections(const VolumeFrame& frame) {
  beginDepth();
  glPolygonOffset(2.0F, 8.0F);
  drawFarSide(frame);
  glDepthFunc(GL_LEQUAL);
  glPolygonOffset(1.0F, 2.0F);
  elements_.sectionalView.draw(frame);
  elements_.sectionalView.drawOutline(frame);
}

void VolumeRenderer::drawSurface(const VolumeFrame& frame) {
  if (!settings_.renderSurface || surface_.empty()) return;
  if (frame.volumeShown() && settings_.renderingMode == RenderingMode::raycasting) {
    // Rays left the depth of the box's near side, which would hide whatever the volume holds.
    beginDepth();
    drawFarSide(frame);
    glDepthFunc(GL_LEQUAL);
  }
  surface_.draw(frame);
}

void VolumeRenderer::drawInFront(const VolumeFrame& frame) {
  glDepthMask(GL_TRUE);
  if (frame.volumeShown()) elements_.drawTranslucent(frame, ElementPass::inFront);
  glDepthFunc(GL_LEQUAL);
  elements_.drawFrame(frame, ElementPass::inFront);
}

void VolumeRenderer::finishFrame() {
  bindVolumeTexture(volume_unit::volume, GL_TEXTURE_3D, 0);
  gl::throwOnGLError("OfflineRendering::render");
}

}  // namespace oct
