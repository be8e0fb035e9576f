// All keys and gestures, over everything else.
#pragma once

namespace oct::app {

// shown: becomes false when it was closed.
void show_keys_panel(bool& shown);

}  // namespace oct::app
