// The measurements, their export, and where their unit comes from.
#pragma once

#include <optional>

#include "octview/model/workspace.h"
#include "octview/panels/file_chooser.h"

namespace oct::app {

class MeasurementsPanel {
 public:
  void show(Workspace& workspace);

 private:
  void show_list(Workspace& workspace, const Ruler& ruler);
  void write(Workspace& workspace, const std::filesystem::path& file) const;

  FileChooser chooser_;
  std::optional<Measurement> profile_;  // whose values are asked for; none: the table of all
};

}  // namespace oct::app
