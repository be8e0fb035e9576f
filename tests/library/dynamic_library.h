// A library loaded while the program runs. One source per platform.
#pragma once

#include <string>

namespace oct::test {

class DynamicLibrary {
 public:
  explicit DynamicLibrary(const std::string& file);  // ends the test with the system's reason on failure
  ~DynamicLibrary();
  DynamicLibrary(const DynamicLibrary&) = delete;
  DynamicLibrary& operator=(const DynamicLibrary&) = delete;

  void* symbol(const char* name) const;  // null when there is none

  template <class Function>
  Function* function(const char* name) const {
    return reinterpret_cast<Function*>(symbol(name));
  }

 private:
  void* handle_;
};

// Sets a variable of the environment, for libraries that are loaded afterwards. Null: takes it away.
void set_environment(const char* name, const char* value);

}  // namespace oct::test
