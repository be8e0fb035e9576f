// The graphics device behind the current OpenGL context: which it is, and whether it is still there.
#pragma once

#include "hosting/surfaces/surface_sharing.h"

namespace oct {

inline constexpr const char* graphics_device_removed = "The graphics device was removed. ";

// Writes version, renderer and vendor of the current context to the log, whatever the context can do.
void log_opengl_renderer();

// Notices that the device of a control is gone: OpenGL was reset, or the device of its surfaces was removed. Both
// stay so; only a new control helps.
class DeviceWatch {
 public:
  // The source must outlive the watch.
  explicit DeviceWatch(const AbstractBufferSource& source) : source_(source) {}

  // With the control's context current.
  bool removed();

  // Throws "The graphics device was removed. ".
  void check();

 private:
  const AbstractBufferSource& source_;
  bool removed_ = false;
};

}  // namespace oct
