// What the volume renderer is asked about its last frame.
#include <algorithm>
#include <cstdlib>

#include "core/exception.h"
#include "core/object_lock.h"
#include "core/timing_mark.h"
#include "gl/context/opengl_loader.h"
#include "gl/draw_state.h"
#include "gl/opengl_error.h"
#include "gl/target/lowest_value.h"
#include "volume/frame/frame_explanation.h"
#include "volume/layout/box_view.h"
#include "volume/volume_renderer.h"

namespace oct {
namespace {

constexpr int most_pixels_a_side = 4096;  // of a picture that is drawn to be looked at
constexpr int least_difference = 3;       // of 255 that an eye might see

struct Area {
  GLint x, y;
  GLsizei width, height;
};

// A few thousand pixels in the middle of the box: of most pictures they show something, and what is drawn elsewhere
// need not be drawn for that.
Area middle_of(const FrameRecord& record) {
  constexpr int side = 48;
  const Viewport& viewport = record.drawn.viewport;
  const float end = std::max(record.box().end(), -1.0F);
  glm::vec3 middle(0.5F * static_cast<float>(viewport.width), 0.5F * static_cast<float>(viewport.height),
                   0.0F);
  middle = on_screen(record.camera(), {0.0F, 0.0F, 0.5F * (end - 1.0F)}).value_or(middle);
  const auto first = [](float at, int pixels) {
    return static_cast<int>(std::clamp(at, 0.0F, static_cast<float>(pixels))) - side / 2;
  };
  return {first(middle.x, viewport.width), first(middle.y, viewport.height), side, side};
}

bool differ(const std::vector<std::uint8_t>& one, const std::vector<std::uint8_t>& other) {
  return std::mismatch(one.begin(), one.end(), other.begin(), [](std::uint8_t a, std::uint8_t b) {
           return std::abs(int{a} - int{b}) < least_difference;
         }).first != one.end();
}

std::optional<float> lowest_value_of(const FrameRecord& record) {
  const VolumeSource& source = record.drawn.source;
  return gl::lowest_value(source.volume, static_cast<GLsizei>(source.extent.depth),
                          static_cast<GLsizei>(source.extent.a_scans), record.filled_slices());
}

}  // namespace

// Where its context is current, no other thread draws.
bool VolumeRenderer::can_be_drawn_again(const FrameRecord& record) const {
  return record.home != gl::no_context && gl::current_identity() == record.home &&
         record.textures_are_unchanged();
}

std::string VolumeRenderer::explain_frame() {
  return last_frame_.explain([this](const FrameRecord& last) {
    const bool at_home = can_be_drawn_again(last);
    const LowestValue lowest = [&] { return at_home ? lowest_value_of(last) : std::nullopt; };
    std::string cause = certain_cause(last, lowest);
    if (!cause.empty() || !at_home) return cause;
    const auto [width, height] = last.drawn.viewport;
    if (std::max(width, height) > most_pixels_a_side || shows_something(last)) return std::string();
    return likely_cause(last, lowest);
  });
}

VolumeRenderer::Pick VolumeRenderer::pick(int x, int y) {
  const ObjectLock lock(this);
  const TimingMark mark("VolumeRenderer::pick");
  gl::require_opengl();
  gl::throwOnGLError("pickVolume");
  const std::shared_ptr<const FrameRecord> last = last_frame_.record();
  if (!last) throw StateError("Draw a frame before picking. ");
  gl::require_home(last->home);
  if (!last->textures_are_unchanged())
    throw StateError("The volume has changed since the last frame. Draw a frame before picking. ");
  const Viewport& viewport = last->drawn.viewport;
  if (x < 0 || y < 0 || x >= viewport.width || y >= viewport.height) return {};
  const VolumeSource source = last->source_again();
  const VolumeFrame frame = begin_frame(last->drawn.settings, source, last->camera());
  colormaps_.update(frame.settings);
  const VolumePick found =
      picker_.pick(frame, {box_, raycaster_, elements_.sectional_view, surface_}, glm::uvec2(x, y));
  if (found.kind == PickedKind::nothing) return {};
  // The axes of the box are A-scans, depth and B-scans; voxels lie at the middle of their share of it.
  const glm::dvec3 place(found.place.y, found.place.x, found.place.z);
  const glm::dvec3 voxels(static_cast<double>(source.extent.depth),
                          static_cast<double>(source.extent.a_scans),
                          static_cast<double>(source.extent.b_scans));
  const bool surface = found.kind == PickedKind::surface;
  return {found.kind, place * voxels - 0.5, place * glm::dvec3(frame.range.extent),
          surface ? static_cast<float>(place.x * frame.settings.surface_scale) : found.value};
}

// Draws volume and surface of the frame once more, without lines and labels, and compares with the background alone.
bool VolumeRenderer::shows_something(const FrameRecord& record) {
  const ObjectLock lock(this);
  const TimingMark mark("VolumeRenderer::shows_something");
  gl::throwOnGLError("explainFrame");
  const Viewport viewport = record.drawn.viewport;
  const VolumeSource source = record.source_again();
  const VolumeFrame frame = begin_frame(record.drawn.settings, source, record.camera());
  colormaps_.update(frame.settings);
  gl::KeptPicture picture;
  const auto pixels_with = [&](const Area& area, bool contents) {
    picture.keep(
        viewport.width, viewport.height,
        [&] {
          clear_target();
          draw_background(frame);
          if (!contents) return;
          const gl::Scissor part(area.x, area.y, area.width, area.height);
          const gl::DepthClamp no_holes;
          draw_opaque(frame);
          draw_rays(frame);
        },
        GL_DEPTH_COMPONENT24);
    gl::throwOnGLError("explainFrame");
    return picture.pixels();
  };
  const Area whole{0, 0, viewport.width, viewport.height};
  const std::vector<std::uint8_t> background = pixels_with(whole, false);
  return differ(pixels_with(middle_of(record), true), background) ||
         differ(pixels_with(whole, true), background);
}

}  // namespace oct
