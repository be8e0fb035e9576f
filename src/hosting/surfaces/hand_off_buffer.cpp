#include "hosting/surfaces/hand_off_buffer.h"

#include <stdexcept>

#include "core/log.h"

namespace oct {

void renderTargetFailed(const char* reason) {
  log() << "An error occured when creating render target: " << reason;
  throw std::runtime_error("Could not generate render target. ");
}

void renderingTookTooLong() {
  throw std::runtime_error("Rendering could not finish within one second. ");
}

}  // namespace oct
