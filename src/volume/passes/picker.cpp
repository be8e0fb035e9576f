#include "volume/passes/picker.h"

#include <array>

#include "core/exception.h"
#include "gl/draw_state.h"
#include "gl/opengl_error.h"
#include "gl/target/float_pixel.h"

namespace oct {
namespace {

constexpr std::array<GLenum, 2> attachments{GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT1};
constexpr float least_opacity = 0.5F / 255.0F;  // that eight bits show
constexpr float half = 0.5F;

void store(const gl::Renderbuffer& buffer, GLenum format, GLenum attachment) {
  glBindRenderbuffer(GL_RENDERBUFFER, buffer.get());
  glRenderbufferStorage(GL_RENDERBUFFER, format, 1, 1);
  glFramebufferRenderbuffer(GL_DRAW_FRAMEBUFFER, attachment, GL_RENDERBUFFER, buffer.get());
}

float distance(const VolumeFrame& frame, const glm::vec3& place) {
  return -(frame.camera.modelview * glm::vec4(2.0F * place - 1.0F, 1.0F)).z;
}

}  // namespace

void Picker::release() {
  framebuffer_.reset();
  place_.reset();
  value_.reset();
  depth_.reset();
}

// With the framebuffer bound.
void Picker::make_target() {
  const GLint bound = gl::integer(GL_RENDERBUFFER_BINDING);
  framebuffer_ = gl::Framebuffer::create();
  place_ = gl::Renderbuffer::create();
  value_ = gl::Renderbuffer::create();
  depth_ = gl::Renderbuffer::create();
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer_.get());
  store(place_, GL_RGBA32F, attachments[0]);
  store(value_, GL_RGBA32F, attachments[1]);
  store(depth_, GL_DEPTH_COMPONENT24, GL_DEPTH_ATTACHMENT);
  glDrawBuffers(static_cast<GLsizei>(attachments.size()), attachments.data());
  glBindRenderbuffer(GL_RENDERBUFFER, static_cast<GLuint>(bound));
  if (glCheckFramebufferStatus(GL_DRAW_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE) return;
  release();
  throw OpenGLError("OpenGL gave no target to pick with. ");
}

template <class Draw>
std::optional<Picker::Found> Picker::found_by(const VolumeFrame& frame, const glm::uvec2& pixel,
                                              Draw&& draw) {
  {
    const gl::DrawTargetGuard target;
    const gl::ScopedDisable whole{GL_SCISSOR_TEST};
    if (!framebuffer_) make_target();
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer_.get());
    const Viewport& viewport = frame.camera.viewport;
    glViewport(-static_cast<GLint>(pixel.x), -static_cast<GLint>(pixel.y), viewport.width, viewport.height);
    glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    const gl::DepthClamp no_holes;
    draw();
  }
  const glm::vec4 place = gl::read_floats(framebuffer_, attachments[0], {0, 0});
  const glm::vec4 shown = gl::read_floats(framebuffer_, attachments[1], {0, 0});
  gl::throwOnGLError("pickVolume");
  if (place.a == 0.0F || !(shown.y >= least_opacity)) return std::nullopt;
  return Found{glm::vec3(place), shown.x, shown.y};
}

VolumePick Picker::pick(const VolumeFrame& frame, const Passes& passes, const glm::uvec2& pixel) {
  std::optional<glm::vec3> surface;
  if (frame.surface_shown()) {
    const gl::DepthClamp no_holes;
    passes.raycaster.surface_positions().draw(frame, passes.surface);
    surface = passes.raycaster.surface_positions().at(pixel);
  }
  const bool sectional = frame.sectional();
  std::optional<Found> found;
  if (frame.volume_shown()) {
    found = found_by(frame, pixel, [&] {
      sectional ? passes.sections.pick(frame) : passes.raycaster.pick(frame, passes.box, pixel);
    });
  }
  gl::throwOnGLError("pickVolume");
  // Rays end on the surface; slices are hidden by one that is nearer.
  const bool surface_shows =
      surface && (!found || (sectional ? distance(frame, *surface) < distance(frame, found->place)
                                       : found->opacity < half));
  if (surface_shows) return {PickedKind::surface, *surface, 0.0F};
  if (!found) return {};
  return {sectional ? PickedKind::slice : PickedKind::volume, found->place, found->value};
}

}  // namespace oct
