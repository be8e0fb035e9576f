// A shared library found by name. One source per platform.
#pragma once

#include <string>

namespace oct {

// Stays loaded to the end of the process: a device library may keep threads that nobody can wait for.
class DeviceModule {
 public:
  // The module of that name which the process has loaded, else the one that the platform's safe search finds;
  // a path is taken as it is. Throws std::runtime_error that names the library and gives the system's reason.
  explicit DeviceModule(const std::string& nameOrPath);

  void* symbol(const char* name) const;  // null when there is none

 private:
  void* handle_ = nullptr;
};

}  // namespace oct
