// Exports of the offscreen target.
#include <exception>

#include "api/guard.h"
#include "api/handles.h"
#include "hosting/offscreen/offscreen_target.h"
#include "oct_rendering/oct_rendering.h"

using oct::OffscreenTarget;
using oct::api::guarded;

namespace {

OffscreenTarget& target(OffscreenTargetHandle handle) {
  return oct::api::checked<OffscreenTarget>(handle, "Invalid OffscreenTargetHandle specified. ");
}

}  // namespace

OffscreenTargetHandle createOffscreenTarget(void) {
  return guarded(__func__,
                 [] { return oct::api::handle_of<OctOffscreenTarget>(std::make_unique<OffscreenTarget>()); });
}

void clearOffscreenTarget(OffscreenTargetHandle Handle) {
  guarded(__func__, [&] {
    if (!Handle) return;
    std::exception_ptr failure;  // which does not keep the target alive
    oct::api::delete_object<OffscreenTarget>(Handle, [&](OffscreenTarget& ended) {
      try {
        ended.close();
      } catch (...) {
        failure = std::current_exception();
      }
    });
    if (failure) std::rethrow_exception(failure);
  });
}

void beginOffscreenFrame(OffscreenTargetHandle Handle, unsigned int Width, unsigned int Height) {
  guarded(__func__, [&] { target(Handle).begin_frame(Width, Height); });
}

void finishOffscreenFrame(OffscreenTargetHandle Handle, void* Pixels) {
  guarded(__func__, [&] { target(Handle).finish_frame(Pixels); });
}

void finishOffscreenFrameAs(OffscreenTargetHandle Handle, int Format, void* Pixels) {
  guarded(__func__, [&] { target(Handle).finish_frame(Pixels, oct::gl::pixel_format_of(Format)); });
}
