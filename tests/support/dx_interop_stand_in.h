// A stand-in for WGL_NV_DX_interop, which no free driver has. Direct3D, WGL and the library are
// real; only the eight entry points are replaced. A registered OpenGL texture is an ordinary one,
// and unlocking it copies its pixels through system memory into the Direct3D surface, so that
// OpenGL's row 0 becomes Direct3D's.
#pragma once

#include <string>

namespace oct::test {

// Install with OpenGL loaded; one at a time. Calls come from several threads.
class DxInteropStandIn {
 public:
  DxInteropStandIn();
  ~DxInteropStandIn();  // takes the extension away again
  DxInteropStandIn(const DxInteropStandIn&) = delete;
  DxInteropStandIn& operator=(const DxInteropStandIn&) = delete;

  // Lets the next call of a function ("Open", "Register", "Unregister", "Lock", "Unlock", "Share") fail.
  void fail_next(const std::string& function);

  int registered_objects() const;
  int locked_objects() const;
  int open_devices() const;
};

}  // namespace oct::test
