#include "scene/live_device.h"

namespace oct::app {
namespace {

// How the phantom moves, for a motion that the eye follows.
constexpr double motion_mm = 0.4;
constexpr double motion_seconds = 4.0;

DeviceNeeds needs_of(const DeviceSetup& setup) {
  return {.phantom = !setup.playback && !setup.polarization,
          .playback = setup.playback.has_value(),
          .motion = setup.motion != OCT_MOTION_NONE,
          .rate = setup.rate.has_value(),
          .sensor_pair = setup.polarization.has_value()};
}

}  // namespace

// Noise has exponentially distributed power, whose darkest tenth lies 8.2 dB below its median. In a volume
// with air or depth beyond the light the darkest tenth is noise.
double MeasuredVolume::polarization_threshold() {
  return quantile(samples, 0.1) + 8.2 + 9.0;
}

std::optional<ValueRange> MeasuredVolume::surface_range(double whole_depth) {
  if (surface.empty()) return std::nullopt;
  ValueRange range{whole_depth * quantile(surface, 0.01), whole_depth * quantile(surface, 0.99)};
  if (range.lower == range.upper) range.upper += 0.1;
  return range;
}

LiveDevice::LiveDevice(const DeviceSetup& setup)
    : library_(setup.library, needs_of(setup)),
      mode_(setup.polarization),
      device_(make_device(setup), library_.clearSimulatedDevice),
      processings_{make_processing(), {nullptr, library_.clearSimulatedProcessing}},
      polarization_(nullptr, library_.clearSimulatedPolarizationProcessing),
      pattern_(nullptr, library_.clearSimulatedScanPattern) {
  if (mode_) {
    processings_[1] = make_processing();
    polarization_.reset(library_.createSimulatedPolarizationProcessing(device()));
  }
  pattern_.reset(library_.createSimulatedScanPattern(device(), setup.scan.a_scans, setup.scan.b_scans,
                                                     setup.scan.width, setup.scan.length));
  if (setup.rate) library_.setSimulatedScanRate(device(), *setup.rate, OCT_PACING_REAL_TIME);
  if (setup.motion != OCT_MOTION_NONE) {
    library_.setSimulatedMotion(device(), setup.motion, motion_mm, motion_seconds);
  }
  library_.throw_pending_error();
}

OCTDeviceHandle LiveDevice::make_device(const DeviceSetup& setup) const {
  OCTDeviceHandle device = nullptr;
  if (setup.playback) {
    const VolumeData& volume = *setup.playback;
    device = library_.createSimulatedPlayback(
        volume.voxels.data(), static_cast<int>(volume.depth), static_cast<int>(volume.ascans),
        static_cast<int>(volume.bscans), 1, setup.depth, setup.scan.width, setup.scan.length, setup.noise,
        setup.scan.seed);
  } else if (mode_) {
    device = library_.createSimulatedPolarizationDevice(setup.phantom, setup.scan.spectrum_length,
                                                        setup.scan.seed);
  } else {
    device = library_.createSimulatedDevice(setup.phantom, setup.scan.spectrum_length, setup.scan.seed);
  }
  library_.throw_pending_error();
  return device;
}

HandleOwner<ProcessingHandle> LiveDevice::make_processing() const {
  return {library_.createSimulatedProcessing(device()), library_.clearSimulatedProcessing};
}

MeasuredVolume LiveDevice::measure(bool with_surface) {
  const HandleOwner<RawDataHandle> raw0(library_.createRawData(), library_.clearRawData);
  const HandleOwner<RawDataHandle> raw1(library_.createRawData(), library_.clearRawData);
  const HandleOwner<DataHandle> data(library_.createData(), library_.clearData);
  library_.throw_pending_error();
  library_.startMeasurement(device(), pattern(), 0);
  library_.getRawDataEx(device(), raw0.get(), 0);
  if (mode_) library_.getRawDataEx(device(), raw1.get(), 1);
  library_.stopMeasurement(device());
  library_.throw_pending_error();
  process(raw0.get(), raw1.get(), data.get());
  library_.throw_pending_error();
  MeasuredVolume volume;
  volume.samples = samples_of(data.get());
  if (with_surface) volume.surface = surface_of(data.get());
  library_.throw_pending_error();
  return volume;
}

void LiveDevice::process(RawDataHandle raw0, RawDataHandle raw1, DataHandle data) const {
  const bool sensor1 = mode_ == PolarizationMode::sensor1;
  if (!mode_ || sensor1 || mode_ == PolarizationMode::sensor0) {
    library_.setProcessedDataOutput(processing(sensor1), data);
    return library_.executeProcessing(processing(sensor1), sensor1 ? raw1 : raw0);
  }
  const HandleOwner<ComplexDataHandle> complex0(library_.createComplexData(), library_.clearComplexData);
  const HandleOwner<ComplexDataHandle> complex1(library_.createComplexData(), library_.clearComplexData);
  library_.setComplexDataOutput(processing(0), complex0.get());
  library_.setComplexDataOutput(processing(1), complex1.get());
  library_.executeProcessing(processing(0), raw0);
  library_.executeProcessing(processing(1), raw1);
  library_.setPolarizationOutputI(polarization(), data);
  library_.executePolarizationProcessing(polarization(), complex0.get(), complex1.get());
}

std::vector<float> LiveDevice::samples_of(DataHandle data) const {
  std::size_t count = 1;
  for (const int axis : {OCT_DATA_SIZE_1, OCT_DATA_SIZE_2, OCT_DATA_SIZE_3}) {
    count *= static_cast<std::size_t>(library_.getDataPropertyInt(data, axis));
  }
  const float* const first = library_.getDataPtr(data);
  return first ? std::vector<float>(first, first + count) : std::vector<float>();
}

std::vector<float> LiveDevice::surface_of(DataHandle data) const {
  const HandleOwner<DataHandle> surface(library_.createData(), library_.clearData);
  library_.determineSurface(data, surface.get());
  const double whole = library_.getDataPropertyFloat(data, OCT_DATA_RANGE_1);
  std::vector<float> parts;
  for (const float depth : samples_of(surface.get())) {
    const auto part = static_cast<float>(depth / whole);
    if (part < 1.0F) parts.push_back(part);
  }
  return parts;
}

}  // namespace oct::app
