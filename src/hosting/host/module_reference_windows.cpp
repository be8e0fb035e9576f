#include "hosting/host/module_reference.h"

#include <windows.h>

#include "gl/context/own_module_windows.h"

namespace oct {

ModuleReference::ModuleReference() : module_(gl::own_module(0)) {}

ModuleReference::~ModuleReference() {
  if (module_) FreeLibrary(static_cast<HMODULE>(module_));
}

}  // namespace oct
