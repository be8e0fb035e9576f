#include "processing/surface.h"

#include "base/parallel.h"
#include "vec/vec.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <utility>
#include <vector>

namespace oct::simulator {
namespace {

/// How far light must stand out of the noise, in decibels, and over how many samples on average.
constexpr float kStep = 14.0f;
constexpr int kSamples = 3;

/// Reach of a reflection's side lobes in samples, and what counts as its peak, in decibels below the highest.
constexpr int kSideLobes = 12;
constexpr float kNearPeak = 9.0f;

/// Ghosts of a reflection, from errors of the resampling, lie this far below it, in decibels.
constexpr float kGhosts = 36.0f;

/// A peak this little below the A-scan's highest, in decibels, is no artefact.
constexpr float kBright = 10.0f;

/// Samples below the surface in which tissue sends back light, and how far above the noise, in decibels.
constexpr int kDepth = 16;
constexpr float kTissue = 6.0f;

/// Samples at the top that hold what is left of the background.
constexpr int kSkipped = 4;

/// Of all samples, a place at which there is no light: a tenth of them is darker. Enough samples for that.
constexpr double kDarkPart = 0.1;
constexpr std::size_t kProbes = 20000;

/// The middle of the noise, in decibels. A tenth of exponentially distributed power lies 8.2 dB below its
/// median; if most of the volume is noise, the tenth is nearly that of the noise alone.
float noiseLevel(const std::vector<float>& samples) {
  const std::size_t step = std::max<std::size_t>(samples.size() / kProbes, 1) | 1u;
  std::vector<float> probes;
  for (std::size_t n = 0; n < samples.size(); n += step) probes.push_back(samples[n]);
  return vec::quantile(probes.data(), probes.size(), kDarkPart) + 8.2f;
}

/// Searches one A-scan.
class SurfaceSearch {
 public:
  SurfaceSearch(const float* aScan, int length, float noise)
      : aScan_(aScan),
        length_(length),
        noise_(noise),
        highest_(vec::extremes(aScan, static_cast<std::size_t>(length)).highest) {}

  /// The sample at which the surface lies, or the length if there is none.
  int run() const {
    const float level = std::max(noise_ + kStep, highest_ - kGhosts);
    for (int i = std::min(kSkipped, length_); i + kSamples <= length_; ++i) {
      float sum = 0.0f;
      for (int n = 0; n < kSamples; ++n) sum += aScan_[i + n];
      if (sum < kSamples * level) continue;
      const int peak = peakNear(i);
      if (aScan_[peak] > highest_ - kBright || isTissue(peak)) return peak;
    }
    return length_;
  }

 private:
  /// A strong reflection stands out long before it is there, by the side lobes of the transform's window.
  int peakNear(int i) const {
    const int end = std::min(i + kSideLobes, length_);
    const float highest = *std::max_element(aScan_ + i, aScan_ + end);
    while (aScan_[i] < highest - kNearPeak) ++i;
    while (i + 1 < end && aScan_[i + 1] > aScan_[i]) ++i;
    return i;
  }

  /// Tissue goes on below its surface. What the background removal leaves of a strong reflection in other
  /// A-scans of the B-scan is a thin line.
  bool isTissue(int i) const { return isMostlyLight(i, kDepth) && isMostlyLight(i + 2, kDepth / 2); }

  bool isMostlyLight(int begin, int samples) const {
    const int end = std::min(begin + samples, length_);
    int light = 0;
    for (int n = begin; n < end; ++n) light += aScan_[n] > noise_ + kTissue;
    return 4 * light >= 3 * samples;
  }

  const float* aScan_;
  int length_;
  float noise_;
  float highest_;
};

}  // namespace

void findSurface(Data& volume, Data& surface, int workers) {
  if (&volume == &surface) throw std::invalid_argument("A volume cannot take its own surface. ");
  const auto& samples = volume.samples();
  if (samples.empty()) throw std::invalid_argument("The volume is empty. ");
  const auto [depths, aScans, bScans] = volume.sizes();
  const auto ranges = volume.rangesMm();
  surface.resize({aScans, bScans, 1}, {ranges[1], ranges[2], 0.0});
  auto& heights = surface.samples();
  const double cellMm = ranges[0] / depths;
  const float noise = noiseLevel(samples);
  const int length = depths;
  parallelRanges(aScans * bScans, workers, [&](int begin, int end) {
    for (int index = begin; index < end; ++index) {
      const float* const aScan = samples.data() + static_cast<std::size_t>(index) * length;
      heights[index] = static_cast<float>(SurfaceSearch(aScan, length, noise).run() * cellMm);
    }
  });
}

}  // namespace oct::simulator
