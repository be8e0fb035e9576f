#include "scene/device_library.h"

#include <array>
#include <stdexcept>

#include "scene/device_error.h"

namespace oct::app {
namespace {

SharedLibrary load(const std::string& name_or_path) {
  try {
    return SharedLibrary(name_or_path);
  } catch (const std::runtime_error& error) {
    throw DeviceError("the device library '" + name_or_path + "' cannot be loaded: " + error.what());
  }
}

}  // namespace

DeviceLibrary::DeviceLibrary(const std::string& name_or_path, const DeviceNeeds& needs)
    : module_(load(name_or_path)) {
#define OCT_FIND(function) function = reinterpret_cast<decltype(&::function)>(module_.symbol(#function));
  OCT_ALL_FUNCTIONS(OCT_FIND)
#undef OCT_FIND

  const auto require = [&](bool found, const char* function) {
    if (found) return;
    throw DeviceError("the device library '" + name_or_path + "' has no function \"" + function +
                      "\"; docs/live.md tells what octrender live needs of a device library");
  };
#define OCT_REQUIRE(function) require(function != nullptr, #function);
  if (needs.phantom) OCT_PHANTOM_FUNCTIONS(OCT_REQUIRE)
  if (needs.playback) OCT_PLAYBACK_FUNCTIONS(OCT_REQUIRE)
  if (needs.motion) OCT_MOTION_FUNCTIONS(OCT_REQUIRE)
  if (needs.rate) OCT_RATE_FUNCTIONS(OCT_REQUIRE)
  if (needs.sensor_pair) {
    OCT_SENSOR_PAIR_FUNCTIONS(OCT_REQUIRE)
  }
  OCT_BASIC_FUNCTIONS(OCT_REQUIRE)
#undef OCT_REQUIRE
}

void DeviceLibrary::throw_pending_error() const {
  std::array<char, 512> text{};
  if (getError(text.data(), static_cast<int>(text.size())) == 0) return;
  throw DeviceError("the device failed: " + std::string(text.data()));
}

}  // namespace oct::app
