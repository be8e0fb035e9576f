// The simulated device as a whole.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "base/data.h"
#include "base/handle_table.h"
#include "device/analog_input.h"
#include "device/motion.h"
#include "device/pace.h"
#include "device/scan_pattern.h"
#include "device/volume_source.h"
#include "optics/spectrometer.h"
#include "phantoms/phantom.h"
#include "processing/calibration.h"

namespace oct::simulator {

// Measures volume after volume, each with its own noise, and keeps the time.
class Device : public HandleObject {
 public:
  static constexpr const char* name = "device";

  Device(std::unique_ptr<VolumeSource> source, std::uint64_t seed);

  // A device that looks at a phantom.
  Device(const Spectrometer& spectrometer, std::shared_ptr<const Phantom> phantom, std::uint64_t seed,
         int cameras = 1);

  int spectrum_length() const { return source_->spectrum_length(); }
  double depth_range_mm() const { return source_->depth_range_mm(); }
  int cameras() const { return source_->cameras(); }

  // What a processing needs to know to turn this device's spectra into a picture.
  Calibration calibration() const { return source_->calibration(); }

  // Holds from the next volume on.
  void set_motion(const Motion& motion);

  // Holds from the next start() on.
  void set_pace(const Pace& pace);

  void start(const ScanPattern& pattern, int mode);

  // Goes on with another pattern, from the next volume on; its first volume begins now.
  void change_pattern(const ScanPattern& pattern);

  // Ends the measurement, if there is one; acquire() of another thread then gives up.
  void stop();

  // Measures the next volume, or reads the one that another camera was read of last.
  // workers: number of threads, 0 for one per core; the volume does not depend on it
  void acquire(RawData& raw, int camera, int workers = 0);

  // Counts the volumes since start() that were lost before the one that was acquired last.
  int lost_volumes() const;

  // Reads the analog input of the volume that was measured last.
  void read_analog_input(Data& data);

 private:
  Exposure next_exposure(int camera, std::uint64_t& stops);
  void begin(const ScanPattern& pattern);
  void wait_for(std::uint64_t volume, std::uint64_t stops);

  std::unique_ptr<VolumeSource> source_;
  AnalogInput analog_input_;
  std::mutex exposing_;       // held while the source works
  mutable std::mutex mutex_;  // guards everything below
  std::condition_variable stopped_;
  std::optional<ScanPattern> pattern_;
  Motion motion_;
  Pace pace_;
  std::optional<PacedMeasurement> measurement_;
  std::vector<std::int64_t> last_volumes_;  // per camera, -1 before the first
  std::optional<Exposure> last_exposure_;
  std::uint64_t lost_ = 0;
  std::atomic<std::uint64_t> stops_ = 0;
};

}  // namespace oct::simulator
