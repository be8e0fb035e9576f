// Extensions of WGL.
#pragma once

namespace oct::gl {

// Whether the current context has it. GLEW's flags tell of the context that it loaded last, which may be another
// driver's.
bool has_wgl_extension(const char* name);

}  // namespace oct::gl
