/// @file
/// The simulated device as a whole.
#pragma once

#include "calibration.h"
#include "camera.h"
#include "data.h"
#include "handle_table.h"
#include "interferometer.h"
#include "phantom.h"
#include "scan_pattern.h"
#include "spectrometer.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>

namespace oct::simulator {

/// Measures a phantom, volume after volume. The phantom stands still: volumes differ by noise only.
class Device : public HandleObject {
public:
  static constexpr const char* kName = "device";

  Device(const Spectrometer& spectrometer, std::shared_ptr<const Phantom> phantom, std::uint64_t seed);

  const Spectrometer& spectrometer() const { return spectrometer_; }

  /// What a processing needs to know to turn this device's spectra into a picture.
  Calibration calibration() const;

  void start(const ScanPattern& pattern, int mode);

  /// Ends the measurement, if there is one; acquire() of another thread then gives up.
  void stop();

  /// Measures the next volume.
  /// @param workers number of threads, 0 for one per core; the volume does not depend on it
  void acquire(RawData& raw, int camera, int workers = 0);

private:
  Spectrometer spectrometer_;
  Interferometer interferometer_;
  Camera camera_;
  std::mutex mutex_;
  std::optional<ScanPattern> pattern_;
  std::uint64_t volumes_ = 0;
  std::atomic<std::uint64_t> stops_ = 0;
};

}  // namespace oct::simulator
