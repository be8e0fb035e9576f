#include "octview/model/workspace.h"

namespace oct::app {

ViewState start_state(const Document& document) {
  ViewState state;
  if (!document) return state;
  const VolumeData& volume = *document.volume;
  state.base.shares = image_shares;
  state.base.range = quick_range(volume.voxels, image_shares).value_or(ValueRange{});
  if (document.overlay) {
    state.overlay.colormap = "inferno";
    state.overlay.range = quick_range(document.overlay->voxels, {0.6, 0.998}).value_or(ValueRange{});
  }
  state.cursor = {static_cast<double>(volume.depth / 2), static_cast<double>(volume.ascans / 2),
                  static_cast<double>(volume.bscans / 2)};
  state.volume.angles = {25, -35};
  state.volume.zoom = 52;
  state.volume.scale_marks = document.spacing().is_known();
  return state;
}

}  // namespace oct::app
