// Keeps this library loaded. One source per platform.
#pragma once

namespace oct {

// A thread of the library's own must not outlive its code, however often clients unload that. What is linked into a
// program needs no reference and gets none.
class ModuleReference {
 public:
  ModuleReference();
  ~ModuleReference();
  ModuleReference(const ModuleReference&) = delete;
  ModuleReference& operator=(const ModuleReference&) = delete;

 private:
  void* module_ = nullptr;
};

}  // namespace oct
