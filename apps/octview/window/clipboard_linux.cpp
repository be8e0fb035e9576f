#include "octview/window/clipboard.h"

namespace oct::app {

// A picture of X11 is no copy but a promise that the window's owner keeps when somebody asks, and the window's library answers
// for text only.
bool copy_picture(const Picture&) {
  return false;
}

}  // namespace oct::app
