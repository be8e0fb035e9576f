#include "hosting/host/module_reference.h"

#include <dlfcn.h>

namespace oct {
namespace {

const char anything_of_this_module = 0;

}  // namespace

ModuleReference::ModuleReference() {
  Dl_info information{};
  if (dladdr(&anything_of_this_module, &information) != 0)
    module_ = dlopen(information.dli_fname, RTLD_NOW | RTLD_NOLOAD);
}

ModuleReference::~ModuleReference() {
  if (module_) dlclose(module_);
}

}  // namespace oct
