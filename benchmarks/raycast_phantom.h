// The volume and the opacity that ray casting is measured with, for our programs and for those of others.
#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

namespace oct::benchmark_scene {

constexpr int voxels = 256;
constexpr int pixels = 512;
constexpr double lowerValue = 0.15;
constexpr double upperValue = 0.8;
constexpr double angle_x = 25.0;  // degrees
constexpr double angle_y = -35.0;

// A layered, scattering sample below air, depth fastest: a third of it is above the lower boundary. Another depth
// samples the same layers.
inline std::vector<float> phantom(int depth = voxels) {
  std::vector<float> data;
  data.reserve(std::size_t{voxels} * voxels * static_cast<std::size_t>(depth));
  for (int w = 0; w < voxels; ++w) {
    for (int v = 0; v < voxels; ++v) {
      const double surface = 70.0 + 20.0 * std::sin(v * 0.03) * std::cos(w * 0.02);
      for (int u = 0; u < depth; ++u) {
        const double below = static_cast<double>(u) * voxels / depth - surface;
        const double layers =
            below < 0.0 ? 0.05 : 0.75 * std::exp(-below / 90.0) * (0.7 + 0.3 * std::sin(below * 0.15));
        const unsigned hash = (static_cast<unsigned>(u) * 73856093U ^ static_cast<unsigned>(v) * 19349663U ^
                               static_cast<unsigned>(w) * 83492791U) *
                              2654435761U;
        data.push_back(static_cast<float>(layers * (0.6 + 0.4 * (hash >> 24U) / 255.0)));
      }
    }
  }
  return data;
}

}  // namespace oct::benchmark_scene
