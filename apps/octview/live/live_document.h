// The volumes of a device as the viewer's document.
#pragma once

#include <memory>
#include <string>

#include "octview/live/live_session.h"
#include "octview/model/workspace.h"

namespace oct::app {

class LiveDocument {
 public:
  // Puts the session's latest volume into the workspace if it has not been shown yet. Where it follows another one of its
  // size, all that the user has set stays; a range that follows the data is found anew with the first one of a start.
  void show(const LiveSession& session, const std::string& title, Workspace& workspace);

  // Whether the workspace shows a volume that came from here.
  bool is_shown(const Workspace& workspace) const;

 private:
  std::shared_ptr<const LiveVolume> shown_;
  unsigned start_ = 0;  // that it is of
};

}  // namespace oct::app
