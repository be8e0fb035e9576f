// The volumes of a device as the viewer's document.
#pragma once

#include <memory>
#include <string>

#include "octview/live/live_volume.h"
#include "octview/model/workspace.h"

namespace oct::app {

class LiveDocument {
 public:
  // Puts a volume that has not been shown yet into the workspace. Where it follows another one of its size, all that the
  // user has set stays.
  void show(const std::shared_ptr<const LiveVolume>& volume, const std::string& title, Workspace& workspace);

  // Whether the workspace shows a volume that came from here.
  bool is_shown(const Workspace& workspace) const;

 private:
  std::shared_ptr<const LiveVolume> shown_;
};

}  // namespace oct::app
