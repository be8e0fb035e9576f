// The functions of a device library that the program calls itself: those that make what live sources use.
#pragma once

#include <string>

#include "module/shared_library.h"
#include "oct_device/oct_device.h"
#include "oct_simulator/oct_simulator.h"

// Every function X(name) that any live view needs. The device functions have none that make a device, a
// processing or a scan pattern, so these are the simulated device's.
#define OCT_BASIC_FUNCTIONS(X)  \
  X(getError)                   \
  X(getDevicePropertyFloat)     \
  X(createRawData)              \
  X(clearRawData)               \
  X(createData)                 \
  X(clearData)                  \
  X(startMeasurement)           \
  X(stopMeasurement)            \
  X(getRawDataEx)               \
  X(setProcessedDataOutput)     \
  X(executeProcessing)          \
  X(getDataPropertyInt)         \
  X(getDataPropertyFloat)       \
  X(getDataPtr)                 \
  X(determineSurface)           \
  X(clearSimulatedDevice)       \
  X(createSimulatedProcessing)  \
  X(clearSimulatedProcessing)   \
  X(createSimulatedScanPattern) \
  X(clearSimulatedScanPattern)

#define OCT_PHANTOM_FUNCTIONS(X) X(createSimulatedDevice)
#define OCT_PLAYBACK_FUNCTIONS(X) X(createSimulatedPlayback)
#define OCT_MOTION_FUNCTIONS(X) X(setSimulatedMotion)
#define OCT_RATE_FUNCTIONS(X) X(setSimulatedScanRate)

#define OCT_SENSOR_PAIR_FUNCTIONS(X)       \
  X(createSimulatedPolarizationDevice)     \
  X(createSimulatedPolarizationProcessing) \
  X(clearSimulatedPolarizationProcessing)  \
  X(createComplexData)                     \
  X(clearComplexData)                      \
  X(setComplexDataOutput)                  \
  X(setPolarizationOutputI)                \
  X(executePolarizationProcessing)

#define OCT_ALL_FUNCTIONS(X) \
  OCT_BASIC_FUNCTIONS(X)     \
  OCT_PHANTOM_FUNCTIONS(X)   \
  OCT_PLAYBACK_FUNCTIONS(X)  \
  OCT_MOTION_FUNCTIONS(X)    \
  OCT_RATE_FUNCTIONS(X)      \
  OCT_SENSOR_PAIR_FUNCTIONS(X)

namespace oct::app {

// What is asked of a device library beside what every live view needs.
struct DeviceNeeds {
  bool phantom = false;
  bool playback = false;
  bool motion = false;
  bool rate = false;
  bool sensor_pair = false;
};

class DeviceLibrary {
 public:
  // Throws a DeviceError that names the library and, if one is missing, the function.
  DeviceLibrary(const std::string& name_or_path, const DeviceNeeds& needs);

  // Throws the library's pending error, if there is one.
  void throw_pending_error() const;

#define OCT_FUNCTION_POINTER(name) decltype(&::name) name = nullptr;
  OCT_ALL_FUNCTIONS(OCT_FUNCTION_POINTER)
#undef OCT_FUNCTION_POINTER

 private:
  SharedLibrary module_;
};

}  // namespace oct::app
