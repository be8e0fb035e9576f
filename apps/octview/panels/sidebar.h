// The panels beside the panes.
#pragma once

#include "octview/model/workspace.h"
#include "octview/panels/data_panel.h"
#include "octview/panels/data_statistics.h"
#include "octview/panels/layers_panel.h"
#include "octview/panels/looks_panel.h"
#include "octview/panels/measurements_panel.h"
#include "octview/panels/session_panel.h"

namespace oct::app {

class Sidebar {
 public:
  // Builds them in ImGui's current window.
  void show(Workspace& workspace);

  bool is_busy() const { return statistics_.is_busy(); }

 private:
  DataStatistics statistics_;
  DataPanel data_;
  LooksPanel looks_;
  LayersPanel layers_;
  MeasurementsPanel measurements_;
  SessionPanel session_;
};

}  // namespace oct::app
