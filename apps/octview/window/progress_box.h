// A box in the middle of the window, over everything, while work takes its time.
#pragma once

#include <string>

namespace oct::app {

// True when the work shall be stopped.
bool show_progress_box(const char* id, const std::string& activity, double share);

}  // namespace oct::app
