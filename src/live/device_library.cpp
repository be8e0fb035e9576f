#include "live/device_library.h"

#include <mutex>
#include <stdexcept>

#include "core/exception.h"
#include "core/immortal.h"
#include "module/shared_library.h"

namespace oct {
namespace {

DeviceError missing(const std::string& library, const std::string& function) {
  return DeviceError("The device library \"" + library + "\" has no function \"" + function + "\". ");
}

template <class Function>
bool find(const SharedLibrary& module, const char* name, Function& function) {
  function = reinterpret_cast<Function>(module.symbol(name));
  return function != nullptr;
}

SharedLibrary load(const std::string& name) {
  try {
    return SharedLibrary(name);
  } catch (const std::runtime_error& error) {
    throw DeviceError("The device library \"" + name + "\" could not be loaded: " + error.what() + " ");
  }
}

std::shared_ptr<const DeviceLibrary> bound_library(const std::string& name) {
  const SharedLibrary module = load(name);
  auto library = std::make_shared<DeviceLibrary>();
  library->name = name;
  std::string& lacking = library->missing_polarization_function;
#define OCT_BIND(function) \
  if (!find(module, #function, library->standard.function)) throw missing(name, #function);
  OCT_STANDARD_DEVICE_FUNCTIONS(OCT_BIND)
#undef OCT_BIND
#define OCT_BIND(function) find(module, #function, library->standard.function);
  OCT_OPTIONAL_DEVICE_FUNCTIONS(OCT_BIND)
#undef OCT_BIND
#define OCT_BIND(function) \
  if (!find(module, #function, library->polarization.function) && lacking.empty()) lacking = #function;
  OCT_POLARIZATION_DEVICE_FUNCTIONS(OCT_BIND)
#undef OCT_BIND
  return library;
}

// The interface has no object that could hold the choice: it is made before the first source exists.
class Binding {
 public:
  void set_name(std::string name) {
    const std::lock_guard lock(mutex_);
    if (name == name_) return;
    name_ = std::move(name);
    library_.reset();
  }

  std::shared_ptr<const DeviceLibrary> library() {
    const std::lock_guard lock(mutex_);
    if (!library_) library_ = bound_library(name_);
    return library_;
  }

  void close() {
    const std::unique_lock lock(mutex_, std::try_to_lock);
    if (lock) library_.reset();
  }

 private:
  std::mutex mutex_;
  std::string name_ = "oct_device";
  std::shared_ptr<const DeviceLibrary> library_;
};

Binding& binding() {
  return immortal<Binding>();
}

}  // namespace

void DeviceLibrary::require_polarization() const {
  if (!missing_polarization_function.empty()) throw missing(name, missing_polarization_function);
}

void set_device_library_name(const char* name_or_path) {
  binding().set_name(name_or_path && *name_or_path ? name_or_path : "oct_device");
}

std::shared_ptr<const DeviceLibrary> device_library() {
  return binding().library();
}

}  // namespace oct
