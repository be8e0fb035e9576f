// What goes wrong with a device or its library.
#pragma once

#include <stdexcept>

namespace oct::app {

class DeviceError : public std::runtime_error {
  using runtime_error::runtime_error;
};

}  // namespace oct::app
