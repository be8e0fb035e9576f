#include "octview/live/live_document.h"

#include <utility>

namespace oct::app {
namespace {

bool same_size(const VolumeData& a, const VolumeData& b) {
  return a.depth == b.depth && a.ascans == b.ascans && a.bscans == b.bscans;
}

}  // namespace

bool LiveDocument::is_shown(const Workspace& workspace) const {
  return shown_ && workspace.document.volume.get() == &shown_->data;
}

void LiveDocument::show(const std::shared_ptr<const LiveVolume>& volume, const std::string& title,
                        Workspace& workspace) {
  if (!volume || volume == shown_) return;
  const bool goes_on = is_shown(workspace) && same_size(shown_->data, volume->data);
  Document document;
  document.volume = std::shared_ptr<const VolumeData>(volume, &volume->data);
  document.title = title;
  document.revision = next_revision();
  workspace.document = std::move(document);
  if (!goes_on) workspace.state = start_state(workspace.document);
  shown_ = volume;
}

}  // namespace oct::app
