// Colours and measures of the interface.
#pragma once

namespace oct::app {

// For the context of ImGui that is current. scale: pixels of the display per point.
void set_theme(bool dark, float scale);

}  // namespace oct::app
