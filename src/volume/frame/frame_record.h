// What is known of the last frame by those who ask about it later, on any thread.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <optional>

#include "gl/context/context_identity.h"
#include "volume/frame/drawn_frame.h"
#include "volume/layout/camera.h"
#include "volume/layout/filled_box.h"
#include "volume/skipping/brick_maxima.h"

namespace oct {

// Never changes once the frame is over.
class FrameRecord {
 public:
  FrameRecord(const VolumeSettings& settings, const VolumeSource& source, Viewport viewport,
              gl::ContextIdentity context)
      : drawn(settings, source, viewport),
        home(context),
        textures_{source.volume_revisions, source.overlay_revisions, source.secondary_revisions} {}

  // Whether all textures still hold what the frame was drawn with. To be asked by the thread that draws.
  bool textures_are_unchanged() const {
    for (std::size_t i = 0; i < textures_.size(); ++i) {
      if (DrawnFrame::newest(textures_[i].lock()) != drawn.revisions[i]) return false;
    }
    return true;
  }

  // The owner's textures, to draw the frame again: without what may be gone by now.
  VolumeSource source_again() const {
    VolumeSource source = drawn.source;
    source.volume_maxima = nullptr;
    source.overlay_maxima = nullptr;
    source.empty_space = nullptr;
    return source;
  }

  bool has_area() const { return drawn.viewport.width > 0 && drawn.viewport.height > 0; }
  const Range& range() const { return drawn.source.range ? *drawn.source.range : drawn.settings.range; }
  FilledBox box() const { return FilledBox::of(drawn.source.filled_fraction, drawn.source.slice_count); }
  // How many of the parts in which the volume fills have been.
  int filled_slices() const {
    const double filled = std::min(static_cast<double>(drawn.source.filled_fraction), 1.0);
    return static_cast<int>(std::lround(filled * drawn.source.slice_count));
  }
  Camera camera() const { return camera_of(drawn.settings.view, range(), drawn.viewport); }

  DrawnFrame drawn;
  gl::ContextIdentity home;                     // where it was drawn
  glm::vec4 plane{0.0F};                        // of the clip plane; all zero: it was off
  std::optional<BrickMaxima::Greatest> values;  // of what is filled of the volume

 private:
  std::array<std::weak_ptr<const gl::SliceRevisions>, 3> textures_;
};

}  // namespace oct
