// How finely a volume is drawn: coarsely enough to follow the hand while something moves, in full when nothing does.
#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include "octview/model/camera.h"

namespace oct::app {

struct Quality {
  double steps = 1;  // of the steps that a ray is to take
  int pixels = 1;    // of the pane along each direction for one of the picture

  bool is_full() const { return steps == 1 && pixels == 1; }
  bool operator==(const Quality&) const = default;
};

// The view in this quality, of the same colours and density. Its size is that of the picture to be drawn, which is shown
// as large as the view's.
VolumeView in_quality(const VolumeView& view, const Quality& quality, const BoxExtent& extent);

// All times are in seconds.
class QualityControl {
 public:
  static constexpr std::size_t level_count = 7;

  // The picture is another one now. The hand may go on.
  void moved(double now);
  // The picture is another one, but nobody waits for the next: it is drawn in full.
  void replaced();

  // What to draw now. None: what was drawn last is as good as it gets for now.
  std::optional<Quality> wanted(double now) const;

  // What was drawn, and how long it took.
  void drawn(const Quality& quality, double seconds);

  // A full picture is still to come.
  bool is_owed() const { return owed_; }

 private:
  double expected(std::size_t level) const;
  bool is_moving(double now) const;

  std::size_t level_ = 0;
  std::array<double, level_count> seconds_{};  // that pictures of each level took lately; 0: not known
  std::optional<double> moved_at_;
  bool changed_ = false;  // since the last picture
  bool owed_ = false;     // the last picture is coarse, or of before
};

}  // namespace oct::app
