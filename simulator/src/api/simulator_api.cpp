// The simulator's own functions: its objects, and what makes it behave as a test wants.

#include <algorithm>
#include <array>
#include <chrono>
#include <numbers>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "api/library.h"
#include "device/device.h"
#include "device/playback_source.h"
#include "device/scan_pattern.h"
#include "oct_simulator/oct_simulator.h"
#include "phantoms/finger_pad.h"
#include "phantoms/mirror.h"
#include "phantoms/polarization_target.h"
#include "phantoms/retina.h"
#include "processing/polarization_processing.h"
#include "processing/processing.h"

using namespace oct::simulator;

namespace {

// Retardation and axis of the polarization target's plate: 45 and 30 degrees.
constexpr double plate_retardance = std::numbers::pi / 4.0;
constexpr double plate_axis = std::numbers::pi / 6.0;

std::shared_ptr<Device> make_device(int phantom, int spectrumLength, std::uint64_t seed, int cameras) {
  const Spectrometer for_skin(spectrumLength, 1300.0, 3.6);
  const Spectrometer for_eyes(spectrumLength, 850.0, 2.4);
  const auto device = [&](const Spectrometer& spectrometer, std::shared_ptr<const Phantom> object) {
    return std::make_shared<Device>(spectrometer, std::move(object), seed, cameras);
  };
  switch (phantom) {
    case OCT_PHANTOM_FINGER_PAD:
      return device(for_skin, std::make_shared<FingerPad>(seed));
    case OCT_PHANTOM_RETINA:
      return device(for_eyes, std::make_shared<Retina>(seed));
    case OCT_PHANTOM_MIRROR:
      return device(for_skin, std::make_shared<Mirror>(1.0, 0.02, 0.1F));
    case OCT_PHANTOM_POLARIZATION_TARGET:
      return device(for_skin, std::make_shared<PolarizationTarget>(plate_retardance, plate_axis));
    default:
      throw std::invalid_argument("Unknown phantom. ");
  }
}

// The functions that a script knows.
constexpr std::array scripted{"getDevicePropertyInt",
                              "getDevicePropertyFloat",
                              "createRawData",
                              "clearRawData",
                              "createData",
                              "clearData",
                              "createComplexData",
                              "clearComplexData",
                              "startMeasurement",
                              "stopMeasurement",
                              "getRawDataEx",
                              "getAnalogInputData",
                              "setProcessedDataOutput",
                              "setComplexDataOutput",
                              "executeProcessing",
                              "getDataPropertyInt",
                              "getDataPropertyFloat",
                              "setDataRange",
                              "getDataPtr",
                              "determineSurface",
                              "getRelativeReferenceIntensity",
                              "setPolarizationOutputI",
                              "setPolarizationOutputRetardation",
                              "setPolarizationOutputOpticAxis",
                              "setPolarizationOutputDOPU",
                              "setPolarizationOutputQ",
                              "setPolarizationOutputU",
                              "setPolarizationOutputV",
                              "setPolarizationFlag",
                              "setPolarizationPropertyFloat",
                              "setPolarizationPropertyInt",
                              "executePolarizationProcessing"};

// Throws std::invalid_argument unless the function is one of them.
// what: what cannot be done to its calls
void check_scripted(const char* function, const char* what) {
  if (std::ranges::find(scripted, std::string_view(function)) == scripted.end())
    throw std::invalid_argument(std::string("No call of ") + function + " can be made to " + what + ". ");
}

}  // namespace

OCTDeviceHandle createSimulatedDevice(int phantom, int spectrumLength, unsigned int seed) {
  return framed("createSimulatedDevice", [&](HandleTable& handles) {
    return static_cast<OCTDeviceHandle>(handles.add(make_device(phantom, spectrumLength, seed, 1)));
  });
}

OCTDeviceHandle createSimulatedPolarizationDevice(int phantom, int spectrumLength, unsigned int seed) {
  return framed("createSimulatedPolarizationDevice", [&](HandleTable& handles) {
    return static_cast<OCTDeviceHandle>(handles.add(make_device(phantom, spectrumLength, seed, 2)));
  });
}

OCTDeviceHandle createSimulatedPlayback(const float* samples, int size1, int size2, int size3, int volumes,
                                        double depthMm, double widthMm, double lengthMm, double noise,
                                        unsigned int seed) {
  return framed("createSimulatedPlayback", [&](HandleTable& handles) {
    auto recording =
        std::make_shared<Recording>(samples, std::array{size1, size2, size3}, volumes, noise, seed);
    auto source = std::make_unique<PlaybackSource>(std::move(recording), depthMm, widthMm, lengthMm);
    return static_cast<OCTDeviceHandle>(handles.add(std::make_shared<Device>(std::move(source), seed)));
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

PolarizationProcessingHandle createSimulatedPolarizationProcessing(OCTDeviceHandle device) {
  return framed("createSimulatedPolarizationProcessing", [&](HandleTable& handles) {
    if (handles.find<Device>(device)->cameras() < 2)
      throw std::invalid_argument("The device has a single sensor. ");
    return static_cast<PolarizationProcessingHandle>(handles.add(std::make_shared<PolarizationProcessing>()));
  });
}

void clearSimulatedPolarizationProcessing(PolarizationProcessingHandle processing) {
  framed("clearSimulatedPolarizationProcessing",
         [&](HandleTable& handles) { handles.remove<PolarizationProcessing>(processing); });
}

void setSimulatedScanRate(OCTDeviceHandle device, double aScansPerSecond, int pacing) {
  framed("setSimulatedScanRate", [&](HandleTable& handles) {
    const auto object = handles.find<Device>(device);
    if (pacing != OCT_PACING_FREE && pacing != OCT_PACING_REAL_TIME)
      throw std::invalid_argument("Unknown pacing. ");
    object->set_pace({.a_scans_per_second = aScansPerSecond, .is_real_time = pacing == OCT_PACING_REAL_TIME});
  });
}

void setSimulatedMotion(OCTDeviceHandle device, int motion, double amplitudeMm, double periodSeconds) {
  framed("setSimulatedMotion", [&](HandleTable& handles) {
    const auto object = handles.find<Device>(device);
    switch (motion) {
      case OCT_MOTION_NONE:
        return object->set_motion({});
      case OCT_MOTION_BREATHING:
        return object->set_motion({Motion::Kind::breathing, amplitudeMm, periodSeconds});
      case OCT_MOTION_DRIFT:
        return object->set_motion({Motion::Kind::drift, amplitudeMm, periodSeconds});
      default:
        throw std::invalid_argument("Unknown motion. ");
    }
  });
}

void setSimulatedScanPattern(OCTDeviceHandle device, ScanPatternHandle pattern) {
  framed("setSimulatedScanPattern", [&](HandleTable& handles) {
    handles.find<Device>(device)->change_pattern(*handles.find<ScanPattern>(pattern));
  });
}

int getLostVolumes(OCTDeviceHandle device) {
  return device_call("getLostVolumes",
                     [&](HandleTable& handles) { return handles.find<Device>(device)->lost_volumes(); });
}

void failSimulatedCall(const char* function, int call, const char* message) {
  framed("failSimulatedCall", [&](HandleTable&) {
    if (!function || !message) throw std::invalid_argument("A failure needs a function and a message. ");
    check_scripted(function, "fail");
    Library::instance().script.fail(function, call, message);
  });
}

void clearSimulatedFailures(void) {
  Library::instance().script.clear_failures();
}

void delaySimulatedCall(const char* function, int call, int milliseconds) {
  framed("delaySimulatedCall", [&](HandleTable&) {
    if (!function) throw std::invalid_argument("A delay needs a function. ");
    check_scripted(function, "take long");
    const auto time =
        milliseconds < 0 ? std::nullopt : std::optional(std::chrono::milliseconds(milliseconds));
    Library::instance().script.delay(function, call, time);
  });
}

void releaseSimulatedCalls(void) {
  Library::instance().script.release();
}

int getSimulatedWaitingCalls(void) {
  return Library::instance().script.waiting();
}

int getSimulatedObjectCount(void) {
  return Library::instance().handles.count();
}
