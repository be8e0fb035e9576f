#include "octview/model/workspace.h"

#include <algorithm>
#include <span>

#include "octview/model/session_file.h"

namespace oct::app {
namespace {

void find_range(LayerLook& look, std::span<const float> samples) {
  if (look.shares) look.range = quick_range(samples, *look.shares).value_or(ValueRange{});
}

}  // namespace

Opening opening_of(const std::filesystem::path& path) {
  Opening opening;
  if (is_session(path)) {
    Session session = read_session(path);
    return {std::move(session.files), std::move(session.state)};
  }
  opening.files.base.path = path;
  return opening;
}

LayerLook first_look(DataFile SessionFiles::*layer) {
  LayerLook look;
  if (layer == &SessionFiles::base) {
    look.shares = image_shares;
  } else if (layer == &SessionFiles::overlay) {
    look.colormap = "inferno";
    look.shares = Shares{0.6, 0.998};
    look.opacity.highest = 0.5;
  } else {
    look.colormap = "viridis";
    look.shares = Shares{0.01, 0.99};
  }
  return look;
}

void fit_state(const Document& document, ViewState& state) {
  if (document.volume) find_range(state.base, document.volume->voxels);
  if (document.overlay) find_range(state.overlay, document.overlay->voxels);
  if (document.surface) find_range(state.surface, document.surface->values);
  if (document.secondary) find_range(state.secondary, document.secondary->values);
  if (!document.volume) return;
  const std::array<std::size_t, 3> size{document.volume->depth, document.volume->ascans,
                                        document.volume->bscans};
  for (std::size_t i = 0; i < 3; ++i)
    state.cursor[i] = std::clamp(state.cursor[i], 0.0, static_cast<double>(size[i]) - 1);
}

ViewState start_state(const Document& document) {
  ViewState state;
  if (!document) return state;
  const VolumeData& volume = *document.volume;
  state.base = first_look(&SessionFiles::base);
  state.base.opacity.shift = 0.35;  // most values of a section are darker than tissue
  state.overlay = first_look(&SessionFiles::overlay);
  state.surface = first_look(&SessionFiles::surface);
  state.secondary = first_look(&SessionFiles::secondary);
  state.cursor = {static_cast<double>(volume.depth / 2), static_cast<double>(volume.ascans / 2),
                  static_cast<double>(volume.bscans / 2)};
  state.volume.angles = {25, -35};
  state.volume.zoom = 52;
  state.volume.scale_marks = document.spacing().is_known();
  fit_state(document, state);
  return state;
}

}  // namespace oct::app
