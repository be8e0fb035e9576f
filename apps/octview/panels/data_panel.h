// What the data is: its size, the distances between its voxels, and what else was named with it.
#pragma once

#include <array>
#include <cstdint>

#include "octview/model/workspace.h"

namespace oct::app {

class DataPanel {
 public:
  // Builds it in ImGui's current window.
  void show(Workspace& workspace);

 private:
  void show_extent(Workspace& workspace);

  std::uint64_t shown_revision_ = 0;
  std::array<double, 3> extent_{};  // that is being typed
};

}  // namespace oct::app
