// How scene elements draw lines.
#pragma once

#include <span>

#include "gl/geometry.h"
#include "volume/frame/volume_frame.h"

namespace oct {

// Smooth blended lines, a pair of points for each. The geometry keeps the buffer from frame to frame.
void draw_model_lines(const VolumeFrame& frame, gl::Geometry& geometry, std::span<const glm::vec3> lines,
                      const glm::vec4& color);

}  // namespace oct
