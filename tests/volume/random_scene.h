// Scenes by chance, the same for a seed: sparse volumes, any boundaries, views, cuts and surfaces.
#pragma once

#include <initializer_list>
#include <random>

#include "support/volume_scene.h"

namespace oct::test {

class Choice {
 public:
  explicit Choice(unsigned seed) : random_(seed) {}
  int below(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
  bool one_of(int count) { return below(count) == 0; }
  double between(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random_);
  }
  template <class Value>
  Value of(std::initializer_list<Value> values) {
    return *(values.begin() + below(static_cast<int>(values.size())));
  }

 private:
  std::mt19937 random_;
};

// A few balls of noise and single voxels in a void, or in what 16 bits round to above a boundary of 0.3.
Volume sparse_volume(int width, int height, int depth, Choice& choice);

Coloring random_coloring(Choice& choice);
VolumeScene random_scene(Choice& choice);

}  // namespace oct::test
