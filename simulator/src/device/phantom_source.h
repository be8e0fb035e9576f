// Volumes of a phantom.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "device/volume_source.h"
#include "optics/camera.h"
#include "optics/interferometer.h"

namespace oct::simulator {

// Measures a phantom. While nothing moves, volumes differ by the cameras' noise only: the spectra without
// noise are kept from the first volume on, and every volume adds its noise to them.
class PhantomSource : public VolumeSource {
 public:
  // cameras: 1, or 2 for a device that tells the two circular polarizations apart
  PhantomSource(const Spectrometer& spectrometer, std::shared_ptr<const Phantom> phantom, std::uint64_t seed,
                int cameras);

  int spectrum_length() const override { return spectrometer_.spectrum_length(); }
  double depth_range_mm() const override { return spectrometer_.depth_range_mm(); }
  int cameras() const override { return static_cast<int>(cameras_.size()); }
  Calibration calibration() const override;
  void expose(const Exposure& exposure, RawData& raw) override;

 private:
  class Simulation;

  // What the spectra without noise are of.
  struct Key {
    ScanPattern pattern;
    std::optional<std::uint64_t> volume;  // nothing if all volumes are the same
    bool operator==(const Key&) const = default;
  };

  bool is_keepable(const Exposure& exposure) const;
  bool keep(const Exposure& exposure);

  Spectrometer spectrometer_;
  Interferometer interferometer_;
  std::vector<Camera> cameras_;
  std::optional<Key> key_;
  std::vector<std::vector<std::uint16_t>> kept_;  // per camera, spectrum after spectrum
};

}  // namespace oct::simulator
