// Extensions of WGL.
#pragma once

#include <windows.h>

namespace oct::gl {

// Whether the current context has it. GLEW's flags tell of the context that it loaded last, which may be another
// driver's.
bool has_wgl_extension(const char* name);

// A context that tells what goes on in it, of a core profile, because debuggers replay nothing else. Null where the driver
// makes none.
HGLRC create_debug_context(HDC device_context);

}  // namespace oct::gl
