// Sessions, and the command that draws what is shown.
#pragma once

#include "octview/model/workspace.h"
#include "octview/panels/file_chooser.h"

namespace oct::app {

class SessionPanel {
 public:
  void show(Workspace& workspace);

 private:
  FileChooser chooser_;
  FileChooser::Purpose purpose_ = FileChooser::Purpose::open;
  Pane pane_ = Pane::volume;  // whose command is copied
};

}  // namespace oct::app
