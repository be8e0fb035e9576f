// A stand-in for WGL_NV_DX_interop, which no free driver has. Direct3D, WGL and the library are
// real; only the eight entry points are replaced. A registered OpenGL texture is an ordinary one,
// and unlocking it copies its pixels through system memory into the Direct3D surface, so that
// OpenGL's row 0 becomes Direct3D's.
//
// It is as strict as the extension allows a driver to be: what a driver may refuse is refused, and kept as a
// fault. So is a texture that stays or becomes the target of a framebuffer that is bound, while Direct3D has it:
// whatever draws then, draws into it.
#pragma once

#include <string>
#include <vector>

namespace oct::test {

// Install with OpenGL loaded; one at a time. Calls come from several threads.
class DxInteropStandIn {
 public:
  DxInteropStandIn();
  ~DxInteropStandIn();  // takes the extension away again
  DxInteropStandIn(const DxInteropStandIn&) = delete;
  DxInteropStandIn& operator=(const DxInteropStandIn&) = delete;

  // Lets the next call of a function ("Open", "Register", "Unregister", "Lock", "Unlock", "Share") fail. Nothing
  // is changed by a call that fails.
  void fail_next(const std::string& function);

  // What was done against the rules since this was asked last.
  std::vector<std::string> take_faults();

  int registered_objects() const;
  int locked_objects() const;
  int open_devices() const;
};

// The one that choose_sharing has installed.
DxInteropStandIn& installed_stand_in();

}  // namespace oct::test
