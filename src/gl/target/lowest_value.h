// The lowest value of a texture, for those who ask why it does not show.
#pragma once

#include <optional>

#include "gl/gl.h"

namespace oct::gl {

// Of the first channel of a three-dimensional texture, in its first `slices` along the third axis; NaN does not count, and
// nothing is found where there is nothing else. Reads slice after slice. What the client has bound and set stays.
std::optional<float> lowest_value(GLuint texture, GLsizei width, GLsizei height, GLint slices);

}  // namespace oct::gl
