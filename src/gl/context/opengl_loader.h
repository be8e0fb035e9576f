// Loads the OpenGL entry points of the process and checks the version of the current context.
#pragma once

namespace oct::gl {

// Loads the entry points (once per process, under a lock) and checks the current context's
// version. Throws std::runtime_error, with the given text when loading fails. Call with a context
// current, before any other OpenGL call.
void initGlew(const char* load_failure = "Could not load OpenGL. ");

// For objects that live in a context of the client's: initGlew unless it has succeeded before, then throws
// when no context is current.
void require_opengl(const char* load_failure = "Could not load OpenGL. ");

// Throws std::runtime_error unless the current context's version is at least the required one.
void checkOpenGLVersion(int required_major, int required_minor);

bool glewInitialized();  // whether GLEW has loaded the entry points

}  // namespace oct::gl
