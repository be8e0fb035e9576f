// Exports of the library itself: version, errors, log.
#include <utility>

#include "api/guard.h"
#include "api/handles.h"
#include "api/sized.h"
#include "api/texts.h"
#include "core/error_store.h"
#include "core/log.h"
#include "core/trace/timing_callback.h"
#include "core/trace/trace_file.h"
#include "hosting/surfaces/renderer_info.h"
#include "live/brennick_data_source.h"
#include "live/device_library.h"
#include "oct_rendering/oct_rendering.h"

using oct::ErrorKind;
using oct::api::guarded;
using oct::api::guarded_unposted;

namespace {

void set_error_callback(LiveDataSourceHandle handle, oct::ErrorCallback::Function function) {
  auto& source =
      oct::api::checked<oct::BrennickDataSource>(handle, "The specified LiveDataSourceHandle is invalid. ");
  source.set_error_callback(oct::ErrorCallback(std::move(function)));
}

}  // namespace

// What the store calls a kind is what clients call it.
static_assert(static_cast<int>(ErrorKind::none) == OCT_ERROR_NONE &&
              static_cast<int>(ErrorKind::argument) == OCT_ERROR_ARGUMENT &&
              static_cast<int>(ErrorKind::state) == OCT_ERROR_STATE &&
              static_cast<int>(ErrorKind::opengl) == OCT_ERROR_OPENGL &&
              static_cast<int>(ErrorKind::memory) == OCT_ERROR_MEMORY &&
              static_cast<int>(ErrorKind::device) == OCT_ERROR_DEVICE &&
              static_cast<int>(ErrorKind::system) == OCT_ERROR_SYSTEM);

const char* getRendererVersion(void) {
  return OCT_RENDERING_VERSION;
}

int isRendererError(void) {
  return guarded_unposted([] { return oct::error_store().hasError() ? OCT_RENDERER_ERROR : 0; });
}

int getRendererError(char* Message, int Size) {
  return guarded_unposted(
      [&] { return oct::api::give_error(oct::error_store().takeError(), Message, Size); });
}

int getOwnRendererError(char* Message, int Size) {
  return guarded_unposted(
      [&] { return oct::api::give_error(oct::error_store().take_own_error(), Message, Size); });
}

int getRendererErrorKind(void) {
  return guarded_unposted([] { return static_cast<int>(oct::error_store().kind()); });
}

void getRendererInfo(OctRendererInfo* Info) {
  guarded(__func__, [&] {
    OctRendererInfo all{};
    all.size = oct::api::size_of(Info, "The size of the information must be set. ");
    const oct::RendererInfo info = oct::renderer_info();
    all.sharings = info.sharings;
    oct::api::give_text(info.vendor, all.vendor, sizeof all.vendor);
    oct::api::give_text(info.renderer, all.renderer, sizeof all.renderer);
    oct::api::give_text(info.version, all.version, sizeof all.version);
    all.max_texture_size = info.max_texture_size;
    all.max_3d_texture_size = info.max_3d_texture_size;
    all.free_video_memory = info.free_video_memory;
    oct::api::give(all, *Info);
  });
}

void setRendererLogFile(const char* FileName) {
  guarded(__func__, [&] { oct::set_log_file_name(FileName ? FileName : ""); });
}

void setDeviceLibrary(const char* NameOrPath) {
  guarded(__func__, [&] { oct::set_device_library_name(NameOrPath); });
}

void setErrorCallback(LiveDataSourceHandle DataSource, OctErrorFunction Callback) {
  guarded(__func__, [&] { set_error_callback(DataSource, Callback); });
}

void setErrorCallbackWithUser(LiveDataSourceHandle DataSource, OctErrorFunctionWithUser Callback,
                              void* user) {
  guarded(__func__, [&] {
    set_error_callback(DataSource, oct::api::with_user<oct::ErrorCallback::Function>(Callback, user));
  });
}

void setRendererTraceFile(const char* FileName) {
  guarded(__func__, [&] { oct::set_trace_file(FileName ? FileName : ""); });
}

void setRendererTimingCallback(OctTimingFunction Begin, OctTimingFunction End, OctTimingFunction Instant,
                               void* user) {
  guarded(__func__, [&] { oct::set_timing_functions({Begin, End, Instant, user}); });
}
