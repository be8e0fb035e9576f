// What a frame can see of a volume.
#pragma once

#include <array>

#include <glm/glm.hpp>

#include "gl/colormap.h"

namespace oct {

struct Visibility {
  static constexpr int most_limits = 4;

  // A sample is nothing to be seen where it is not above the limit. A ray that looks for a maximum goes by the
  // greatest of several limits that it has reached: they ascend.
  std::array<float, most_limits> limits{};
  int count = 0;  // 0: everything is visible, nothing is skipped

  // With an overlay, whose maximum a ray looks for, the limits are those of the overlay; and this is the one of the
  // volume.
  bool overlay = false;
  float volume_limit = 0.0F;

  // By octant, 1 for depth + 2 for A-scans + 4 for B-scans where rays go towards greater indices: whether the
  // frame has rays of it.
  std::array<bool, 8> octants{};

  bool same_limits(const Visibility& other) const {
    return limits == other.limits && count == other.count && overlay == other.overlay &&
           volume_limit == other.volume_limit;
  }
};

// The value up to which a composite shows nothing: the lower boundary, or more where the colour map begins with
// entries without opacity; infinity for a map without any.
float composite_limit(const Colormap& colors, float lower, float upper);

// The octants of the rays from an eye in model coordinates (homogeneous) to the box.
std::array<bool, 8> octants_of(const glm::vec4& eye);

}  // namespace oct
