// The three slices of the sectional view, along model x, y and z. No OpenGL.
#pragma once

#include <array>

namespace oct {

struct Section {
  bool shown = true;
  float position = 0.5F;  // 0 to 1

  bool operator==(const Section&) const = default;
};

using Sections = std::array<Section, 3>;

}  // namespace oct
