#include "stokes.h"

#include "parallel.h"

#include <algorithm>

namespace oct::simulator {
namespace {

/// Averages along lines of places that lie a stride apart.
class LineAverage {
 public:
  LineAverage(int length, std::size_t stride, int box)
      : length_(length), stride_(stride), before_((box - 1) / 2), after_(box / 2), sums_(length + 1) {}

  void apply(float* line) {
    for (int i = 0; i < length_; ++i) sums_[i + 1] = sums_[i] + line[i * stride_];
    for (int i = 0; i < length_; ++i) {
      const int begin = std::max(i - before_, 0);
      const int end = std::min(i + after_, length_ - 1) + 1;
      line[i * stride_] = static_cast<float>((sums_[end] - sums_[begin]) / (end - begin));
    }
  }

 private:
  int length_;
  std::size_t stride_;
  int before_;
  int after_;
  std::vector<double> sums_;  // of all values before
};

}  // namespace

StokesVolume::StokesVolume(std::array<int, 3> sizes) : sizes_(sizes) {
  for (auto& component : components_)
    component.resize(static_cast<std::size_t>(sizes[0]) * sizes[1] * sizes[2]);
}

void StokesVolume::average(std::array<int, 3> box, int workers) {
  std::size_t stride = 1;
  for (int axis = 0; axis < 3; ++axis) {
    const int length = sizes_[axis];
    // Beyond twice the length, every box holds the whole line.
    const int size = std::min(box[axis], 2 * length + 1);
    const std::size_t block = stride * length;
    if (size > 1 && length > 1) {
      const auto lines = static_cast<int>(components_[0].size() / length);
      parallelRanges(lines, workers, [&](int begin, int end) {
        LineAverage average(length, stride, size);
        for (int line = begin; line < end; ++line)
          for (auto& component : components_)
            average.apply(component.data() + line / stride * block + line % stride);
      });
    }
    stride = block;
  }
}

}  // namespace oct::simulator
