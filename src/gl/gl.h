// The OpenGL entry points. Everything beyond OpenGL 1.1 is a function pointer that initGlew fills.
#pragma once

#include <GL/glew.h>
