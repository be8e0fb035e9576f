#include "hosting/surfaces/hand_off_buffer.h"

#include <stdexcept>

#include "core/log.h"

namespace oct {

void render_target_failed(const char* reason) {
  log() << "An error occured when creating render target: " << reason;
  throw std::runtime_error("Could not generate render target. ");
}

void rendering_took_too_long() {
  throw std::runtime_error("Rendering could not finish within one second. ");
}

}  // namespace oct
