// Exports of the offscreen target.
#include "api/api_frame.h"
#include "hosting/offscreen/offscreen_target.h"
#include "oct_rendering/oct_rendering.h"

using oct::OffscreenTarget;
using oct::api::frame;

namespace {

OffscreenTarget& target(OffscreenTargetHandle handle) {
  return oct::api::checked<OffscreenTarget>(handle, "Invalid OffscreenTargetHandle specified. ");
}

}  // namespace

OffscreenTargetHandle createOffscreenTarget(void) {
  return frame(__func__, [] { return oct::api::handleOf<OctOffscreenTarget>(new OffscreenTarget); });
}

void clearOffscreenTarget(OffscreenTargetHandle Handle) {
  frame(__func__, [&] { delete reinterpret_cast<OffscreenTarget*>(Handle); });
}

void beginOffscreenFrame(OffscreenTargetHandle Handle, unsigned int Width, unsigned int Height) {
  frame(__func__, [&] { target(Handle).beginFrame(Width, Height); });
}

void finishOffscreenFrame(OffscreenTargetHandle Handle, void* Pixels) {
  frame(__func__, [&] { target(Handle).finishFrame(Pixels); });
}
