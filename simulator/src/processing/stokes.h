// Stokes vectors of a volume.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

namespace oct::simulator {

// One value per place and Stokes component: I, Q, U, V as powers. Depth is the fastest axis.
class StokesVolume {
 public:
  static constexpr int components = 4;

  StokesVolume() = default;
  explicit StokesVolume(std::array<int, 3> sizes);

  const std::array<int, 3>& sizes() const { return sizes_; }
  std::vector<float>& component(int index) { return components_[index]; }
  const std::vector<float>& component(int index) const { return components_[index]; }

  // Replaces every value by the mean over a box around it, cut off at the edges of the volume.
  // box: places along each axis, 1 or more; of an even number the smaller half lies before the middle
  void average(std::array<int, 3> box, int workers);

 private:
  std::array<int, 3> sizes_{};
  std::array<std::vector<float>, components> components_;
};

}  // namespace oct::simulator
