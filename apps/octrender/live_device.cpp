#include "live_device.h"

#include <functional>

#include "failure.h"

namespace oct::app {
namespace {

// How the phantom moves, for a motion that the eye follows.
constexpr double kMotionMm = 0.4;
constexpr double kMotionSeconds = 4.0;

DeviceNeeds needsOf(const DeviceSetup& setup) {
  return {.phantom = !setup.playback && !setup.polarization,
          .playback = setup.playback.has_value(),
          .motion = setup.motion != OCT_MOTION_NONE,
          .rate = setup.rate.has_value(),
          .sensorPair = setup.polarization.has_value()};
}

// An object of the device library for as long as a volume is measured.
template <class Handle>
class Owner {
 public:
  Owner(Handle (*create)(), void (*clear)(Handle)) : handle_(create()), clear_(clear) {}
  ~Owner() {
    if (handle_) clear_(handle_);
  }
  Owner(const Owner&) = delete;
  Owner& operator=(const Owner&) = delete;
  Handle get() const { return handle_; }

 private:
  Handle handle_;
  void (*clear_)(Handle);
};

}  // namespace

LiveDevice::LiveDevice(const DeviceSetup& setup)
    : library_(setup.library, needsOf(setup)), mode_(setup.polarization) {
  try {
    make(setup);
  } catch (...) {
    release();
    throw;
  }
}

LiveDevice::~LiveDevice() {
  release();
}

void LiveDevice::make(const DeviceSetup& setup) {
  if (setup.playback) {
    const VolumeData& volume = *setup.playback;
    device_ = library_.createSimulatedPlayback(
        volume.voxels.data(), static_cast<int>(volume.depth), static_cast<int>(volume.ascans),
        static_cast<int>(volume.bscans), 1, setup.depth, setup.scan.width, setup.scan.length, setup.noise,
        setup.scan.seed);
  } else if (mode_) {
    device_ =
        library_.createSimulatedPolarizationDevice(setup.phantom, setup.scan.spectrumLength, setup.scan.seed);
  } else {
    device_ = library_.createSimulatedDevice(setup.phantom, setup.scan.spectrumLength, setup.scan.seed);
  }
  library_.throwPendingError();
  processings_[0] = library_.createSimulatedProcessing(device_);
  if (mode_) {
    processings_[1] = library_.createSimulatedProcessing(device_);
    polarization_ = library_.createSimulatedPolarizationProcessing(device_);
  }
  pattern_ = library_.createSimulatedScanPattern(device_, setup.scan.aScans, setup.scan.bScans,
                                                 setup.scan.width, setup.scan.length);
  if (setup.rate) library_.setSimulatedScanRate(device_, *setup.rate, OCT_PACING_REAL_TIME);
  if (setup.motion != OCT_MOTION_NONE) {
    library_.setSimulatedMotion(device_, setup.motion, kMotionMm, kMotionSeconds);
  }
  library_.throwPendingError();
}

void LiveDevice::release() {
  if (pattern_) library_.clearSimulatedScanPattern(pattern_);
  if (polarization_) library_.clearSimulatedPolarizationProcessing(polarization_);
  for (const ProcessingHandle processing : processings_) {
    if (processing) library_.clearSimulatedProcessing(processing);
  }
  if (device_) library_.clearSimulatedDevice(device_);
}

MeasuredVolume LiveDevice::measure(bool withSurface) {
  const Owner raw0(library_.createRawData, library_.clearRawData);
  const Owner raw1(library_.createRawData, library_.clearRawData);
  const Owner data(library_.createData, library_.clearData);
  library_.throwPendingError();
  library_.startMeasurement(device_, pattern_, 0);
  library_.getRawDataEx(device_, raw0.get(), 0);
  if (mode_) library_.getRawDataEx(device_, raw1.get(), 1);
  library_.stopMeasurement(device_);
  library_.throwPendingError();
  process(raw0.get(), raw1.get(), data.get());
  library_.throwPendingError();
  MeasuredVolume volume;
  read(data.get(), withSurface, volume);
  library_.throwPendingError();
  return volume;
}

void LiveDevice::process(RawDataHandle raw0, RawDataHandle raw1, DataHandle data) const {
  const bool sensor1 = mode_ == PolarizationMode::Sensor1;
  if (!mode_ || sensor1 || mode_ == PolarizationMode::Sensor0) {
    library_.setProcessedDataOutput(processing(sensor1), data);
    return library_.executeProcessing(processing(sensor1), sensor1 ? raw1 : raw0);
  }
  const Owner complex0(library_.createComplexData, library_.clearComplexData);
  const Owner complex1(library_.createComplexData, library_.clearComplexData);
  library_.setComplexDataOutput(processing(0), complex0.get());
  library_.setComplexDataOutput(processing(1), complex1.get());
  library_.executeProcessing(processing(0), raw0);
  library_.executeProcessing(processing(1), raw1);
  library_.setPolarizationOutputI(polarization_, data);
  library_.executePolarizationProcessing(polarization_, complex0.get(), complex1.get());
}

void LiveDevice::read(DataHandle data, bool withSurface, MeasuredVolume& volume) const {
  const auto samplesOf = [&](DataHandle values) {
    std::size_t count = 1;
    for (const int axis : {OCT_DATA_SIZE_1, OCT_DATA_SIZE_2, OCT_DATA_SIZE_3}) {
      count *= static_cast<std::size_t>(library_.getDataPropertyInt(values, axis));
    }
    const float* const first = library_.getDataPtr(values);
    return first ? std::vector<float>(first, first + count) : std::vector<float>();
  };
  volume.depth = library_.getDataPropertyInt(data, OCT_DATA_SIZE_1);
  volume.samples = samplesOf(data);
  if (!withSurface) return;
  const Owner surface(library_.createData, library_.clearData);
  library_.determineSurface(data, surface.get());
  const double whole = library_.getDataPropertyFloat(data, OCT_DATA_RANGE_1);
  for (const float depth : samplesOf(surface.get())) {
    const auto part = static_cast<float>(depth / whole);
    if (part < 1.0f) volume.surface.push_back(part);
  }
}

}  // namespace oct::app
