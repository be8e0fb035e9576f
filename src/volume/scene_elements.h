// What is drawn around the volume: translucent elements, frame, clip plane border, sectional view.
#pragma once

#include <array>

#include "volume/volume_frame.h"

namespace oct {

struct Section {
  bool shown = true;
  float position = 0.5F;  // 0 to 1
};

// The three slices through the volume, along x, y and z.
class SectionalView {
 public:
  // Throws std::invalid_argument and changes nothing when a position is not in 0 to 1.
  void set(const std::array<Section, 3>& sections);

  void draw(const VolumeFrame& frame);
  void drawOutline(const VolumeFrame& frame);
  void release() {}

 private:
  std::array<Section, 3> sections_;
};

// Each element is drawn once behind the volume (depth test: greater or equal) and once in front of it.
class SceneElements {
 public:
  SectionalView sectionalView;

  void drawTranslucent(const VolumeFrame& frame);  // blending on
  void drawFrame(const VolumeFrame& frame);        // edges and scale marks, by the frame flags
  void drawClipPlaneBorder(const VolumeFrame& frame);
  void drawRemovedSegment(const VolumeFrame& frame);  // after the rays, with remove segment on
  void release();                                     // deletes the OpenGL objects and the text renderers
};

}  // namespace oct
