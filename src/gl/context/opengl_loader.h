// Loads the OpenGL entry points of the process and checks the version of the current context.
#pragma once

#include <string>
#include <string_view>

#include "gl/context/context_identity.h"

namespace oct::gl {

// Loads the entry points, under a lock, unless they are those of the current context's driver: the process has one
// set of them. Checks the current context's version before. Throws an OpenGLError, with the given text when
// loading fails. Call with a context current, before any other OpenGL call.
void initGlew(const char* load_failure = "Could not load OpenGL. ");

// For objects that live in a context of the client's: initGlew unless it has succeeded for this driver before,
// then throws when no context is current.
void require_opengl(const char* load_failure = "Could not load OpenGL. ");

// Throws an OpenGLError unless the current context's version is at least the required one.
void checkOpenGLVersion(int required_major, int required_minor);

bool glewInitialized();  // whether GLEW has loaded the entry points

// Whether they are those of the current context's driver. False without a context.
bool is_loaded_for_current_driver();

// The current context's, asked anew. Of one below 3.0, errors that it had to report are lost.
Version current_version();

// A text of the current context, GL_VERSION or the like; empty without one.
std::string_view opengl_text(unsigned int name);

// Vendor, renderer and version of the current context.
std::string driver_name();

}  // namespace oct::gl
