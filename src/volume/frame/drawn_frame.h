// All that a frame's picture depends on.
#pragma once

#include <cstdint>
#include <optional>

#include "volume/frame/volume_settings.h"

namespace oct {

// Two that are equal show the same.
struct DrawnFrame {
  DrawnFrame(const VolumeSettings& frame_settings, const VolumeSource& frame_source, Viewport frame_viewport)
      : settings(frame_settings),
        source(frame_source),
        volume(newest(source.volume_revisions)),
        overlay(newest(source.overlay_revisions)),
        viewport(frame_viewport) {}

  bool operator==(const DrawnFrame&) const = default;

  VolumeSettings settings;
  VolumeSource source;
  std::uint64_t volume;  // revisions
  std::uint64_t overlay;
  Viewport viewport;

 private:
  static std::uint64_t newest(const gl::SliceRevisions* revisions) {
    return revisions ? revisions->newest() : 0;
  }
};

}  // namespace oct
