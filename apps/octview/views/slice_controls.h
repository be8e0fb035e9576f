// The head of a pane of sections: which one is shown, and how.
#pragma once

#include "octview/model/workspace.h"

namespace oct::app {

const char* title_of(SliceAxis axis);

void show_slice_controls(Workspace& workspace, SliceAxis axis);

}  // namespace oct::app
