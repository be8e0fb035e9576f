// The functions of a device library, by the names and types of its public header.
#pragma once

#include "oct_device/oct_device.h"

// Every function X(name) of a device library that serves standard devices.
#define OCT_STANDARD_DEVICE_FUNCTIONS(X) \
  X(getDevicePropertyInt)                \
  X(getDevicePropertyFloat)              \
  X(createRawData)                       \
  X(clearRawData)                        \
  X(createData)                          \
  X(clearData)                           \
  X(startMeasurement)                    \
  X(stopMeasurement)                     \
  X(isError)                             \
  X(getError)                            \
  X(getRawDataEx)                        \
  X(getAnalogInputData)                  \
  X(setProcessedDataOutput)              \
  X(executeProcessing)                   \
  X(getDataPropertyInt)                  \
  X(getDataPropertyFloat)                \
  X(setDataRange)                        \
  X(getDataPtr)                          \
  X(determineSurface)                    \
  X(getRelativeReferenceIntensity)

// And those that any may leave out.
#define OCT_OPTIONAL_DEVICE_FUNCTIONS(X) X(getLostVolumes)

// And of one that serves devices with two sensors.
#define OCT_POLARIZATION_DEVICE_FUNCTIONS(X) \
  X(createComplexData)                       \
  X(clearComplexData)                        \
  X(setComplexDataOutput)                    \
  X(setPolarizationOutputI)                  \
  X(setPolarizationOutputRetardation)        \
  X(setPolarizationOutputOpticAxis)          \
  X(setPolarizationOutputDOPU)               \
  X(setPolarizationOutputQ)                  \
  X(setPolarizationOutputU)                  \
  X(setPolarizationOutputV)                  \
  X(setPolarizationFlag)                     \
  X(setPolarizationPropertyFloat)            \
  X(setPolarizationPropertyInt)              \
  X(executePolarizationProcessing)

namespace oct {

#define OCT_DEVICE_FUNCTION_POINTER(name) decltype(&::name) name = nullptr;

struct StandardDeviceFunctions {
  OCT_STANDARD_DEVICE_FUNCTIONS(OCT_DEVICE_FUNCTION_POINTER)
  OCT_OPTIONAL_DEVICE_FUNCTIONS(OCT_DEVICE_FUNCTION_POINTER)  // null where the library lacks it
};

struct PolarizationDeviceFunctions {
  OCT_POLARIZATION_DEVICE_FUNCTIONS(OCT_DEVICE_FUNCTION_POINTER)
};

#undef OCT_DEVICE_FUNCTION_POINTER

}  // namespace oct
