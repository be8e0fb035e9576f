// A shared library that the program loads while it runs. One source per platform.
#pragma once

#include <string>

namespace oct::app {

// Stays loaded to the end of the program: the rendering library keeps calling it.
class SharedLibrary {
 public:
  // A name without prefix and suffix, which the system searches for, or a path. Throws a DeviceError that
  // gives the system's reason.
  explicit SharedLibrary(const std::string& nameOrPath);

  void* symbol(const char* name) const;  // null when there is none

 private:
  void* handle_ = nullptr;
};

}  // namespace oct::app
