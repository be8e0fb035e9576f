// How the volume looks: presets, values and colours, opacity, the view.
#pragma once

#include "octview/model/workspace.h"
#include "octview/panels/curve.h"
#include "octview/panels/data_statistics.h"
#include "octview/panels/histogram.h"

namespace oct::app {

class LooksPanel {
 public:
  void show(Workspace& workspace, const LayerStatistics& statistics);

 private:
  void show_presets(ViewState& state, const LayerStatistics& statistics);
  void show_opacity(ViewState& state, const Document& document);

  Histogram histogram_;
  CurveEditor curve_;
};

}  // namespace oct::app
