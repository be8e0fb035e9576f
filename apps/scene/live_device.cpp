#include "scene/live_device.h"

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

}  // namespace

// Noise has exponentially distributed power, whose darkest tenth lies 8.2 dB below its median. In a volume
// with air or depth beyond the light the darkest tenth is noise.
double MeasuredVolume::polarizationThreshold() {
  return quantile(samples, 0.1) + 8.2 + 9.0;
}

std::optional<ValueRange> MeasuredVolume::surfaceRange(double wholeDepth) {
  if (surface.empty()) return std::nullopt;
  ValueRange range{wholeDepth * quantile(surface, 0.01), wholeDepth * quantile(surface, 0.99)};
  if (range.lower == range.upper) range.upper += 0.1;
  return range;
}

LiveDevice::LiveDevice(const DeviceSetup& setup)
    : library_(setup.library, needsOf(setup)),
      mode_(setup.polarization),
      device_(makeDevice(setup), library_.clearSimulatedDevice),
      processings_{makeProcessing(), {nullptr, library_.clearSimulatedProcessing}},
      polarization_(nullptr, library_.clearSimulatedPolarizationProcessing),
      pattern_(nullptr, library_.clearSimulatedScanPattern) {
  if (mode_) {
    processings_[1] = makeProcessing();
    polarization_.reset(library_.createSimulatedPolarizationProcessing(device()));
  }
  pattern_.reset(library_.createSimulatedScanPattern(device(), setup.scan.aScans, setup.scan.bScans,
                                                     setup.scan.width, setup.scan.length));
  if (setup.rate) library_.setSimulatedScanRate(device(), *setup.rate, OCT_PACING_REAL_TIME);
  if (setup.motion != OCT_MOTION_NONE) {
    library_.setSimulatedMotion(device(), setup.motion, kMotionMm, kMotionSeconds);
  }
  library_.throwPendingError();
}

OCTDeviceHandle LiveDevice::makeDevice(const DeviceSetup& setup) const {
  OCTDeviceHandle device = nullptr;
  if (setup.playback) {
    const VolumeData& volume = *setup.playback;
    device = library_.createSimulatedPlayback(
        volume.voxels.data(), static_cast<int>(volume.depth), static_cast<int>(volume.ascans),
        static_cast<int>(volume.bscans), 1, setup.depth, setup.scan.width, setup.scan.length, setup.noise,
        setup.scan.seed);
  } else if (mode_) {
    device =
        library_.createSimulatedPolarizationDevice(setup.phantom, setup.scan.spectrumLength, setup.scan.seed);
  } else {
    device = library_.createSimulatedDevice(setup.phantom, setup.scan.spectrumLength, setup.scan.seed);
  }
  library_.throwPendingError();
  return device;
}

HandleOwner<ProcessingHandle> LiveDevice::makeProcessing() const {
  return {library_.createSimulatedProcessing(device()), library_.clearSimulatedProcessing};
}

MeasuredVolume LiveDevice::measure(bool withSurface) {
  const HandleOwner<RawDataHandle> raw0(library_.createRawData(), library_.clearRawData);
  const HandleOwner<RawDataHandle> raw1(library_.createRawData(), library_.clearRawData);
  const HandleOwner<DataHandle> data(library_.createData(), library_.clearData);
  library_.throwPendingError();
  library_.startMeasurement(device(), pattern(), 0);
  library_.getRawDataEx(device(), raw0.get(), 0);
  if (mode_) library_.getRawDataEx(device(), raw1.get(), 1);
  library_.stopMeasurement(device());
  library_.throwPendingError();
  process(raw0.get(), raw1.get(), data.get());
  library_.throwPendingError();
  MeasuredVolume volume;
  volume.depth = library_.getDataPropertyInt(data.get(), OCT_DATA_SIZE_1);
  volume.samples = samplesOf(data.get());
  if (withSurface) volume.surface = surfaceOf(data.get());
  library_.throwPendingError();
  return volume;
}

void LiveDevice::process(RawDataHandle raw0, RawDataHandle raw1, DataHandle data) const {
  const bool sensor1 = mode_ == PolarizationMode::Sensor1;
  if (!mode_ || sensor1 || mode_ == PolarizationMode::Sensor0) {
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

std::vector<float> LiveDevice::samplesOf(DataHandle data) const {
  std::size_t count = 1;
  for (const int axis : {OCT_DATA_SIZE_1, OCT_DATA_SIZE_2, OCT_DATA_SIZE_3}) {
    count *= static_cast<std::size_t>(library_.getDataPropertyInt(data, axis));
  }
  const float* const first = library_.getDataPtr(data);
  return first ? std::vector<float>(first, first + count) : std::vector<float>();
}

std::vector<float> LiveDevice::surfaceOf(DataHandle data) const {
  const HandleOwner<DataHandle> surface(library_.createData(), library_.clearData);
  library_.determineSurface(data, surface.get());
  const double whole = library_.getDataPropertyFloat(data, OCT_DATA_RANGE_1);
  std::vector<float> parts;
  for (const float depth : samplesOf(surface.get())) {
    const auto part = static_cast<float>(depth / whole);
    if (part < 1.0f) parts.push_back(part);
  }
  return parts;
}

}  // namespace oct::app
