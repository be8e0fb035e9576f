// What lies over the volume: overlay, surface, secondary data.
#pragma once

#include <array>
#include <cstddef>

#include "octview/model/workspace.h"
#include "octview/panels/data_statistics.h"
#include "octview/panels/file_chooser.h"
#include "octview/panels/histogram.h"

namespace oct::app {

class LayersPanel {
 public:
  void show(Workspace& workspace, const LayerStatistics& statistics);

 private:
  struct Layer;

  void show_layer(Workspace& workspace, const Layer& layer, const Statistics* statistics);

  static const std::array<Layer, 3> layers;
  std::array<Histogram, 3> histograms_;
  FileChooser chooser_;
  std::size_t asked_for_ = 0;  // the layer that a file is chosen for
};

}  // namespace oct::app
