// The OpenGL context that is current on the calling thread. One source per platform.
#pragma once

namespace oct::gl {

// The context's handle; null when none is current or when it was made by a window
// system other than WGL and EGL.
void* current_context();

bool is_context_current();

}  // namespace oct::gl
