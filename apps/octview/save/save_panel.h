// Asks for a picture's file and size, and saves or copies it in the background.
#pragma once

#include <array>
#include <string>

#include "octview/model/background_task.h"
#include "octview/model/workspace.h"
#include "octview/save/picture_file.h"

namespace oct::app {

class SavePanel {
 public:
  // Of the pane that the mouse was over last.
  void open(const Workspace& workspace);
  void copy(Workspace& workspace);

  // Once per frame, outside of other windows.
  void show(Workspace& workspace);
  bool is_busy() const { return task_.is_running(); }

 private:
  struct Outcome {
    std::filesystem::path file;
    std::string explanation;
    std::optional<Picture> copied;  // for the clipboard; the file is there where that takes no picture
  };

  void show_form(Workspace& workspace);
  void take(Workspace& workspace);
  PictureOrder order(const Workspace& workspace) const;

  bool wants_to_open_ = false;
  Pane pane_ = Pane::volume;
  std::array<char, 1024> file_{"picture.png"};
  int scale_ = 2;  // 0: the width counts
  int width_ = 1920;
  bool figure_ = false;
  BackgroundTask<Outcome> task_;
};

}  // namespace oct::app
