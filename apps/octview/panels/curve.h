// The curve of opacities along the colour map, whose points can be moved.
#pragma once

#include <cstddef>
#include <optional>

#include "octview/model/view_state.h"

namespace oct::app {

class CurveEditor {
 public:
  // In the width that there is. True when the curve changed.
  bool show(LayerLook& look);

 private:
  std::optional<std::size_t> held_;
};

}  // namespace oct::app
