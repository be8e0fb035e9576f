#include "processing/stokes.h"

#include <algorithm>

#include "base/parallel.h"

namespace oct::simulator {
namespace {

// So many lines that lie side by side are averaged at once: what is read along with a place is used.
constexpr std::size_t bundle = 32;

// Averages along lines of places that lie a stride apart, a bundle of adjacent lines at a time.
class LineAverage {
 public:
  LineAverage(int length, std::size_t stride, int box)
      : length_(length),
        stride_(stride),
        before_((box - 1) / 2),
        after_(box / 2),
        bundle_(std::min(bundle, stride)),
        sums_((static_cast<std::size_t>(length) + 1) * bundle_) {}

  // lines: first place of the first line
  // width: adjacent lines, at most bundle
  void apply(float* lines, std::size_t width) {
    for (int i = 0; i < length_; ++i) {
      const float* const places = lines + i * stride_;
      for (std::size_t line = 0; line < width; ++line) sums_at(i + 1)[line] = sums_at(i)[line] + places[line];
    }
    for (int i = 0; i < length_; ++i) {
      const int begin = std::max(i - before_, 0);
      const int end = std::min(i + after_, length_ - 1) + 1;
      float* const places = lines + i * stride_;
      for (std::size_t line = 0; line < width; ++line)
        places[line] = static_cast<float>((sums_at(end)[line] - sums_at(begin)[line]) / (end - begin));
    }
  }

 private:
  // Of all values before a place, for every line.
  double* sums_at(int place) { return sums_.data() + place * bundle_; }

  int length_;
  std::size_t stride_;
  int before_;
  int after_;
  std::size_t bundle_;
  std::vector<double> sums_;
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
      const std::size_t bundles = (stride + bundle - 1) / bundle;  // within one block
      const auto count = static_cast<int>(components_[0].size() / block * bundles);
      parallel_ranges(count, workers, [&](int begin, int end) {
        LineAverage average(length, stride, size);
        for (int index = begin; index < end; ++index) {
          const std::size_t line = index % bundles * bundle;
          for (auto& component : components_)
            average.apply(component.data() + index / bundles * block + line, std::min(bundle, stride - line));
        }
      });
    }
    stride = block;
  }
}

}  // namespace oct::simulator
