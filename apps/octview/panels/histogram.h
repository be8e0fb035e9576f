// The values of a layer, and the range that its colours take, which can be dragged.
#pragma once

#include "octview/model/statistics.h"
#include "octview/model/view_state.h"

namespace oct::app {

class Histogram {
 public:
  // In the width that there is. statistics: none yet while they are counted. True when the look changed.
  bool show(LayerLook& look, const Statistics* statistics);

 private:
  bool show_bars(LayerLook& look, const Statistics& statistics);
  bool show_numbers(LayerLook& look, const Statistics* statistics);

  enum class Held { nothing, lower, upper };
  Held held_ = Held::nothing;
  bool log_counts_ = true;
};

}  // namespace oct::app
