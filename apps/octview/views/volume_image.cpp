#include "octview/views/volume_image.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <utility>

#include "client/explanation.h"
#include "octview/model/layer_colors.h"
#include "octview/model/volume_picture.h"

namespace oct::app {
namespace {

// Bytes to the driver in one frame of the interface.
constexpr std::size_t upload_per_frame = std::size_t{1} << 25;

}  // namespace

// Measured to the end of the drawing, not of its commands.
template <class Draw>
void VolumeImage::draw_timed(const Quality& quality, PictureSize size, Draw draw_content) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point begin = Clock::now();
  texture_.draw(static_cast<int>(size.width), static_cast<int>(size.height), draw_content);
  gl_.finish();
  control_.drawn(quality, std::chrono::duration<double>(Clock::now() - begin).count());
}

void VolumeImage::take(const Workspace& workspace, PictureSize size) {
  const Document& document = workspace.document;
  const ViewState& state = workspace.state;
  Wanted wanted{document.revision, state.volume,          state.base, state.overlay, state.surface,
                state.secondary,   document.files.extent, size};
  if (wanted_ == wanted) return;
  const bool is_new = !wanted_ || wanted_->revision != wanted.revision;
  wanted_ = std::move(wanted);
  error_.clear();
  explanation_.clear();
  if (is_new) {
    control_.replaced();
  } else {
    control_.moved(workspace.now);
  }
  // What was stopped stays so.
  if (is_new || !is_partial()) uploading_ = true;
  scene_ = volume_scene(document, state, size);
}

void VolumeImage::update(const Workspace& workspace, PictureSize size) {
  if (std::exchange(is_live_, false)) wanted_.reset();
  try {
    take(workspace, size);
    if (error_.empty()) draw(workspace.now);
  } catch (const std::exception& error) {
    error_ = error.what();
    drawn_with_ = nullptr;
    uploading_ = false;
  }
  if (!error_.empty()) throw std::runtime_error(error_);
}

void VolumeImage::draw(double now) {
  if (uploading_) {
    drawing_.set(scene_);
    uploading_ = drawing_.upload(upload_per_frame);
    if (uploading_) return;
  }
  const std::optional<Quality> quality = control_.wanted(now);
  if (!quality) return;
  VolumeScene drawn = scene_;
  static_cast<VolumeView&>(drawn) = in_quality(scene_, *quality, scene_.extent);
  drawing_.set(drawn);
  draw_timed(*quality, drawn.size, [&] { drawing_.draw(); });
  drawn_with_ = drawing_.renderer();
  if (quality->is_full()) explanation_ = explanation_of(explainFrame, drawing_.renderer());
}

void VolumeImage::update(const Workspace& workspace, LiveSession& live, PictureSize size) {
  is_live_ = true;
  uploading_ = false;
  error_.clear();
  explanation_.clear();
  drawn_with_ = nullptr;
  control_.moved(workspace.now);
  const Quality quality = control_.wanted(workspace.now).value_or(Quality{});
  LiveScene scene;
  scene.view = workspace.state.volume;
  scene.view.size = size;
  scene.view = in_quality(scene.view, quality, extent_of(workspace.document));
  scene.volume = {base_colors(workspace.state.base, scene.view.look), workspace.state.base.range};
  draw_timed(quality, scene.view.size, [&] { live.draw(scene); });
  drawn_with_ = live.renderer();
}

std::optional<VolumePlace> VolumeImage::place_at(const std::array<double, 2>& part) const {
  if (!drawn_with_) return std::nullopt;
  const auto pixel = [](double share, int count) {
    return std::clamp(static_cast<int>(share * count), 0, count - 1);
  };
  OctPick pick{};
  pick.size = sizeof pick;
  try {
    checked(pickVolume, drawn_with_, pixel(part[0], texture_.width()),
            texture_.height() - 1 - pixel(part[1], texture_.height()), &pick);
  } catch (const RenderingError& error) {
    if (error.kind() == OCT_ERROR_STATE) return std::nullopt;  // another volume came meanwhile
    throw;
  }
  if (pick.kind == OCT_PICK_NOTHING) return std::nullopt;
  VolumePlace place{{}, static_cast<double>(pick.value)};
  for (std::size_t i = 0; i < 3; ++i) {
    const double factor = is_live_ ? 1 : static_cast<double>(scene_.base.data->reduction[i]);
    place.voxel[i] = (pick.voxel[i] + 0.5) * factor - 0.5;
  }
  return place;
}

}  // namespace oct::app
