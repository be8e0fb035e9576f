#include "octview/live/live_document.h"

#include <utility>

#include "data/samples.h"

namespace oct::app {
bool LiveDocument::is_shown(const Workspace& workspace) const {
  return shown_ && workspace.document.volume.get() == &shown_->data;
}

void LiveDocument::show(const LiveSession& session, const std::string& title, Workspace& workspace) {
  const std::shared_ptr<const LiveVolume> volume = session.latest();
  if (!volume || volume == shown_) return;
  const bool goes_on = is_shown(workspace) && shown_->data.sizes() == volume->data.sizes();
  Document document;
  document.volume = std::shared_ptr<const VolumeData>(volume, &volume->data);
  document.drawn_volume = document.volume;
  document.title = title;
  document.revision = next_revision();
  workspace.document = std::move(document);
  LayerLook& look = workspace.state.base;
  if (!goes_on) {
    workspace.state = start_state(workspace.document);
  } else if (look.shares && start_ != session.starts()) {
    look.range = quick_range(volume->data.voxels, *look.shares).value_or(look.range);
  }
  shown_ = volume;
  start_ = session.starts();
}

}  // namespace oct::app
