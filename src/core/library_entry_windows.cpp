// Notices of the library being loaded into and unloaded from a process.
#include <windows.h>

#include "core/console.h"

namespace {

// Written past the C runtime's streams: when a process ends, its other threads have been stopped wherever
// they were, perhaps holding the lock of a stream.
void notice(const char* line, DWORD length) {
  if (oct::is_quiet()) return;
  const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
  DWORD written = 0;
  if (output && output != INVALID_HANDLE_VALUE) WriteFile(output, line, length, &written, nullptr);
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
  static const char attach[] = "Process attach... \r\n";
  static const char detach[] = "Process detach... \r\n";
  if (reason == DLL_PROCESS_ATTACH) notice(attach, sizeof attach - 1);
  if (reason == DLL_PROCESS_DETACH) notice(detach, sizeof detach - 1);
  return TRUE;
}
