#include "processing/surface.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <utility>
#include <vector>

#include "base/parallel.h"
#include "vec/vec.h"

namespace oct::simulator {
namespace {

// How far light must stand out of the noise, in decibels, and over how many samples on average.
constexpr float edge_step = 14.0F;
constexpr int averaged_samples = 3;

// Reach of a reflection's side lobes in samples, and what counts as its peak, in decibels below the highest.
constexpr int side_lobes = 12;
constexpr float near_peak = 9.0F;

// Ghosts of a reflection, from errors of the resampling, lie this far below it, in decibels.
constexpr float ghosts = 36.0F;

// A peak this little below the A-scan's highest, in decibels, is no artefact.
constexpr float bright = 10.0F;

// Samples below the surface in which tissue sends back light, and how far above the noise, in decibels.
constexpr int depth = 16;
constexpr float tissue = 6.0F;

// Samples at the top that hold what is left of the background.
constexpr int skipped = 4;

// Of all samples, a place at which there is no light: a tenth of them is darker. Enough samples for that.
constexpr double dark_part = 0.1;
constexpr std::size_t probe_count = 20000;

// The middle of the noise, in decibels. A tenth of exponentially distributed power lies 8.2 dB below its
// median; if most of the volume is noise, the tenth is nearly that of the noise alone.
float noise_level(const std::vector<float>& samples) {
  const std::size_t step = std::max<std::size_t>(samples.size() / probe_count, 1) | 1U;
  std::vector<float> probes;
  for (std::size_t n = 0; n < samples.size(); n += step) probes.push_back(samples[n]);
  return vec::quantile(probes.data(), probes.size(), dark_part) + 8.2F;
}

// Searches one A-scan.
class SurfaceSearch {
 public:
  SurfaceSearch(const float* a_scan, int length, float noise)
      : a_scan_(a_scan),
        length_(length),
        noise_(noise),
        highest_(vec::extremes(a_scan, static_cast<std::size_t>(length)).highest) {}

  // The sample at which the surface lies, or the length if there is none.
  int run() const {
    const float level = std::max(noise_ + edge_step, highest_ - ghosts);
    for (int i = std::min(skipped, length_); i + averaged_samples <= length_; ++i) {
      float sum = 0.0F;
      for (int n = 0; n < averaged_samples; ++n) sum += a_scan_[i + n];
      if (sum < averaged_samples * level) continue;
      const int peak = peak_near(i);
      if (a_scan_[peak] > highest_ - bright || is_tissue(peak)) return peak;
    }
    return length_;
  }

 private:
  // A strong reflection stands out long before it is there, by the side lobes of the transform's window.
  int peak_near(int i) const {
    const int end = std::min(i + side_lobes, length_);
    const float highest = *std::max_element(a_scan_ + i, a_scan_ + end);
    while (a_scan_[i] < highest - near_peak) ++i;
    while (i + 1 < end && a_scan_[i + 1] > a_scan_[i]) ++i;
    return i;
  }

  // Tissue goes on below its surface. What the background removal leaves of a strong reflection in other
  // A-scans of the B-scan is a thin line.
  bool is_tissue(int i) const { return is_mostly_light(i, depth) && is_mostly_light(i + 2, depth / 2); }

  bool is_mostly_light(int begin, int samples) const {
    const int end = std::min(begin + samples, length_);
    int light = 0;
    for (int n = begin; n < end; ++n) light += a_scan_[n] > noise_ + tissue;
    return 4 * light >= 3 * samples;
  }

  const float* a_scan_;
  int length_;
  float noise_;
  float highest_;
};

}  // namespace

void find_surface(Data& volume, Data& surface, int workers) {
  if (&volume == &surface) throw std::invalid_argument("A volume cannot take its own surface. ");
  const auto& samples = volume.samples();
  if (samples.empty()) throw std::invalid_argument("The volume is empty. ");
  const auto [depths, a_scans, b_scans] = volume.sizes();
  const auto ranges = volume.ranges_mm();
  surface.resize({a_scans, b_scans, 1}, {ranges[1], ranges[2], 0.0});
  auto& heights = surface.samples();
  const double cell_mm = ranges[0] / depths;
  const float noise = noise_level(samples);
  const int length = depths;
  parallel_ranges(a_scans * b_scans, workers, [&](int begin, int end) {
    for (int index = begin; index < end; ++index) {
      const float* const a_scan = samples.data() + static_cast<std::size_t>(index) * length;
      heights[index] = static_cast<float>(SurfaceSearch(a_scan, length, noise).run() * cell_mm);
    }
  });
}

}  // namespace oct::simulator
