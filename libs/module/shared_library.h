// A shared library found by name, and its functions. One source per platform.
#pragma once

#include <string>

namespace oct {

// Stays loaded to the end of the process: a device library may keep threads that nobody can wait for, and
// pointers to its functions are kept by whoever asked for them.
class SharedLibrary {
 public:
  // A name without prefix and suffix is that of a module which the process has loaded, else the platform's safe
  // search finds it; a path is taken as it is. UTF-8 on every platform; on Windows a path may have forward
  // slashes. Throws std::runtime_error whose text is the system's reason and nothing else.
  explicit SharedLibrary(const std::string& name_or_path);

  void* symbol(const char* name) const;  // null when there is none

 private:
  void* handle_ = nullptr;
};

}  // namespace oct
