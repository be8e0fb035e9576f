#include "scene/volume_scene.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "client/explanation.h"
#include "scene/offscreen_picture.h"

namespace oct::app {
namespace {

// Bytes between two reports of progress.
constexpr std::size_t upload_block = std::size_t{1} << 26;

template <class Layer, class Member>
bool differs(const std::optional<Layer>& layer, const std::optional<Layer>& before, Member Layer::*member) {
  if (layer.has_value() != before.has_value()) return true;
  return layer && (*layer).*member != (*before).*member;
}

}  // namespace

void VolumeDrawing::set(const VolumeScene& scene) {
  if (is_set_ && scene == scene_) return;
  const VolumeScene last = std::exchange(scene_, scene);
  const VolumeScene* const before = std::exchange(is_set_, false) ? &last : nullptr;
  if (!before || static_cast<const VolumeView&>(last) != scene) {
    set_view(renderer(), scene);
    checked(setAngles, renderer(), scene.angles[0], scene.angles[1]);
  }
  checked(setOfflineAspectRatio, rendering_.offline(), scene.extent[0], scene.extent[1], scene.extent[2]);
  set_base(before);
  set_overlay(before);
  set_secondary(before);
  set_surface(before);
  is_set_ = true;
}

void VolumeDrawing::set_base(const VolumeScene* before) {
  const VolumeLayer& base = scene_.base;
  if (!before || before->base.data != base.data) {
    checked(allocateOfflineVolume, rendering_.offline(), static_cast<int>(base.data->depth),
            static_cast<int>(base.data->ascans), static_cast<int>(base.data->bscans));
    checked(uploadOfflineSubVolume, rendering_.offline(), 0, 0, static_cast<const float*>(nullptr));
    next_bscan_ = 0;
  }
  if (!before || before->base.colormap != base.colormap || before->base.range != base.range)
    set_colors(renderer(), ColoredData::volume, base.colormap, base.range);
}

// Other sizes of the base volume take overlay and secondary data with them.
void VolumeDrawing::set_overlay(const VolumeScene* before) {
  const auto& overlay = scene_.overlay;
  if (before && before->base.data == scene_.base.data && before->overlay == overlay) return;
  if (!before || before->base.data != scene_.base.data ||
      differs(overlay, before->overlay, &VolumeLayer::data)) {
    overlay_awaited_ = overlay.has_value();
    if (!overlay)
      checked(uploadOverlayOfflineVolume, rendering_.offline(), static_cast<const float*>(nullptr));
  }
  if (overlay) set_colors(renderer(), ColoredData::overlay, overlay->colormap, overlay->range);
}

void VolumeDrawing::set_secondary(const VolumeScene* before) {
  const auto& secondary = scene_.secondary;
  if (before && before->base.data == scene_.base.data && before->secondary == secondary) return;
  if (!before || before->base.data != scene_.base.data ||
      differs(secondary, before->secondary, &SecondaryColoring::map)) {
    const LateralMap none;
    const LateralMap& map = secondary ? *secondary->map : none;
    checked(uploadOfflineSecondaryData, rendering_.offline(), static_cast<int>(map.ascans),
            static_cast<int>(map.bscans), 1U, 0U, static_cast<unsigned>(map.bscans),
            secondary ? map.values.data() : nullptr);
  }
  if (secondary) set_colors(renderer(), ColoredData::secondary, secondary->colormap, secondary->range);
}

void VolumeDrawing::set_surface(const VolumeScene* before) {
  const auto& surface = scene_.surface;
  if (before && before->base.data == scene_.base.data && before->surface == surface) return;
  const std::array<std::size_t, 3>& file_size = scene_.base.data->file_size;
  if (!surface) {
    checked(setSurface, renderer(), 0, 0, 1.0, static_cast<const float*>(nullptr));
    return;
  }
  checked(setSurface, renderer(), static_cast<int>(file_size[1]), static_cast<int>(file_size[2]),
          static_cast<double>(file_size[0]), surface->depths->data());
  set_colors(renderer(), ColoredData::surface, surface->colormap, surface->range);
}

bool VolumeDrawing::upload(std::size_t bytes) {
  if (!is_set_) return false;
  const VolumeData& data = *scene_.base.data;
  if (next_bscan_ < data.bscans) {
    const std::size_t voxels = data.depth * data.ascans;
    const std::size_t count = std::clamp<std::size_t>(
        bytes / sizeof(float) / std::max<std::size_t>(1, voxels), 1, data.bscans - next_bscan_);
    checked(uploadOfflineSubVolume, rendering_.offline(), static_cast<int>(next_bscan_),
            static_cast<int>(next_bscan_ + count), data.voxels.data() + next_bscan_ * voxels);
    next_bscan_ += count;
  } else if (overlay_awaited_) {
    checked(uploadOverlayOfflineVolume, rendering_.offline(), scene_.overlay->data->voxels.data());
    overlay_awaited_ = false;
  }
  return next_bscan_ < data.bscans || overlay_awaited_;
}

double VolumeDrawing::uploaded() const {
  if (!scene_.base.data || scene_.base.data->bscans == 0) return 1;
  return static_cast<double>(next_bscan_) / static_cast<double>(scene_.base.data->bscans);
}

void VolumeDrawing::draw() {
  // Uploads show the volume and hide the surface.
  checked(setRenderElements, renderer(), int{scene_.show_volume},
          int{scene_.surface.has_value() && scene_.show_surface});
  const bool overlaid = scene_.overlay && scene_.show_overlay && !overlay_awaited_;
  checked(renderOfflineVolume, rendering_.offline(), overlaid ? 2 : 0);
}

std::optional<double> pixel_mm(const VolumeScene& scene) {
  if (scene.perspective) return std::nullopt;
  // The picture is a fifth of the zoom wide where the box's diagonal is 4.
  const auto& [depth, a_scans, b_scans] = scene.extent;
  const double diagonal = std::hypot(double{depth}, double{a_scans}, double{b_scans});
  return scene.zoom / 5 * diagonal / 4 / scene.size.width;
}

std::string render_volume(const VolumeScene& scene, unsigned count,
                          const std::function<void(unsigned, const Picture&)>& take, unsigned tile,
                          const ProgressFunction& progress) {
  OffscreenTarget target;
  VolumeDrawing drawing;
  VolumeScene turned = scene;
  std::size_t done = 0;  // tiles
  const std::size_t total = tiles_of(scene.size, tile).size() * count * (scene.transparent ? 2 : 1);
  const auto draw = [&] {
    drawing.set(turned);
    while (drawing.upload(upload_block)) progress(done, total);
    return draw_picture(target, scene.size, tile, &setRendererPart, drawing.renderer(), [&] {
      progress(done++, total);
      drawing.draw();
    });
  };
  const auto draw_on = [&](std::uint32_t background) {
    turned.background_bottom = turned.background_top = background;
    return draw();
  };
  for (unsigned i = 0; i < count; ++i) {
    turned.angles[1] = scene.angles[1] + 360.0 * i / count;
    take(i, scene.transparent ? without_background(draw_on(0x000000), draw_on(0xFFFFFF)) : draw());
  }
  return explanation_of(explainFrame, drawing.renderer());
}

}  // namespace oct::app
