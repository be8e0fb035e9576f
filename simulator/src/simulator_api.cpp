// Creation and release of the simulator's own objects.

#include "oct_device/oct_simulator.h"

#include "device.h"
#include "finger_pad.h"
#include "library.h"
#include "mirror.h"
#include "processing.h"
#include "retina.h"
#include "scan_pattern.h"

#include <stdexcept>

using namespace oct::simulator;

namespace {

std::shared_ptr<Device> makeDevice(int phantom, int spectrumLength, std::uint64_t seed) {
  const Spectrometer forSkin(spectrumLength, 1300.0, 3.6);
  const Spectrometer forEyes(spectrumLength, 850.0, 2.4);
  switch (phantom) {
    case OCT_PHANTOM_FINGER_PAD:
      return std::make_shared<Device>(forSkin, std::make_shared<FingerPad>(seed), seed);
    case OCT_PHANTOM_RETINA:
      return std::make_shared<Device>(forEyes, std::make_shared<Retina>(seed), seed);
    case OCT_PHANTOM_MIRROR:
      return std::make_shared<Device>(forSkin, std::make_shared<Mirror>(1.0, 0.02, 0.1f), seed);
    default:
      throw std::invalid_argument("Unknown phantom. ");
  }
}

}  // namespace

OCTDeviceHandle createSimulatedDevice(int phantom, int spectrumLength, unsigned int seed) {
  return framed("createSimulatedDevice", [&](HandleTable& handles) {
    return static_cast<OCTDeviceHandle>(handles.add(makeDevice(phantom, spectrumLength, seed)));
  });
}

void clearSimulatedDevice(OCTDeviceHandle device) {
  framed("clearSimulatedDevice", [&](HandleTable& handles) { handles.remove<Device>(device)->stop(); });
}

ProcessingHandle createSimulatedProcessing(OCTDeviceHandle device) {
  return framed("createSimulatedProcessing", [&](HandleTable& handles) {
    const auto calibration = handles.find<Device>(device)->calibration();
    return static_cast<ProcessingHandle>(handles.add(std::make_shared<Processing>(calibration)));
  });
}

void clearSimulatedProcessing(ProcessingHandle processing) {
  framed("clearSimulatedProcessing", [&](HandleTable& handles) { handles.remove<Processing>(processing); });
}

ScanPatternHandle createSimulatedScanPattern(OCTDeviceHandle device, int aScans, int bScans, double widthMm,
                                             double lengthMm) {
  return framed("createSimulatedScanPattern", [&](HandleTable& handles) {
    handles.find<Device>(device);
    auto pattern = std::make_shared<ScanPattern>(aScans, bScans, widthMm, lengthMm);
    return static_cast<ScanPatternHandle>(handles.add(std::move(pattern)));
  });
}

void clearSimulatedScanPattern(ScanPatternHandle pattern) {
  framed("clearSimulatedScanPattern", [&](HandleTable& handles) { handles.remove<ScanPattern>(pattern); });
}

int getSimulatedObjectCount(void) { return Library::instance().handles.count(); }
