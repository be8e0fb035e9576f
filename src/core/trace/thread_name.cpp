#include "core/trace/thread_name.h"

#include "core/platform.h"

namespace oct {
namespace {

constinit thread_local const char* own_name = nullptr;

}  // namespace

void name_thread(const char* name) noexcept {
  own_name = name;
}

std::string thread_name() {
  return own_name ? own_name : system_thread_name();
}

}  // namespace oct
