// Pictures in the system's clipboard.
#pragma once

#include "data/picture.h"

namespace oct::app {

// False where the system offers programs no way to leave a picture there. Throws std::runtime_error when the system refuses.
bool copy_picture(const Picture& picture);

}  // namespace oct::app
