// All that a frame's picture depends on.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "volume/frame/volume_settings.h"

namespace oct {

// Two that are equal show the same. It keeps nothing of the owner's alive and looks at nothing of his.
struct DrawnFrame {
  DrawnFrame(const VolumeSettings& frame_settings, const VolumeSource& frame_source, Viewport frame_viewport)
      : settings(frame_settings),
        source(frame_source),
        revisions{newest(source.volume_revisions), newest(source.overlay_revisions),
                  newest(source.secondary_revisions)},
        viewport(frame_viewport) {
    source.volume_revisions.reset();
    source.overlay_revisions.reset();
    source.secondary_revisions.reset();
  }

  bool operator==(const DrawnFrame&) const = default;

  static std::uint64_t newest(const std::shared_ptr<const gl::SliceRevisions>& revisions) {
    return revisions ? revisions->newest() : 0;
  }

  VolumeSettings settings;
  VolumeSource source;
  std::array<std::uint64_t, 3> revisions;  // of volume, overlay and secondary data; 0: there is none
  Viewport viewport;
};

}  // namespace oct
