// The device library that live sources call.
#pragma once

#include <memory>
#include <string>

#include "live/device_functions.h"

namespace oct {

struct DeviceLibrary {
  StandardDeviceFunctions standard;
  PolarizationDeviceFunctions polarization;
  std::string name;
  std::string missing_polarization_function;  // the first one that the library lacks; empty: none

  // Throws a DeviceError unless the library serves devices with two sensors.
  void require_polarization() const;
};

// Sets which library is bound from now on; null or empty: "oct_device". Sources
// keep the one they were made with.
void set_device_library_name(const char* name_or_path);

// Binds the library at the first call. Throws a DeviceError that names the library and, if that is what
// it lacks, the function; the next call then tries again.
std::shared_ptr<const DeviceLibrary> device_library();

}  // namespace oct
