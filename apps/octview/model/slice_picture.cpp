#include "octview/model/slice_picture.h"

#include "octview/model/layer_colors.h"
#include "octview/model/slice_position.h"

namespace oct::app {
namespace {

std::shared_ptr<const Image> image_of(const Document& document, const VolumeData& volume,
                                      const ViewState& state, SliceAxis axis) {
  const SlicePosition place = slice_position(document, state, axis);
  Image image = slice_of(volume, axis, place.position, state.enface, document.surface.get());
  const SliceAxes axes = axes_of(axis);
  const VoxelSpacing spacing = document.spacing();
  image.spacing.mm = {spacing.mm[axes.down], spacing.mm[axes.right], spacing.mm[axes.across]};
  return std::make_shared<const Image>(std::move(image));
}

}  // namespace

SliceImages slice_images(const Document& document, const ViewState& state, SliceAxis axis) {
  SliceImages images{image_of(document, *document.volume, state, axis), nullptr};
  if (document.overlay && state.overlay.visible)
    images.overlay = image_of(document, *document.overlay, state, axis);
  return images;
}

SliceScene slice_scene(const ViewState& state, SliceAxis axis, const SliceImages& images, PictureSize size) {
  SliceScene scene;
  scene.base = {images.base, state.base.range, plain_colors(state.base)};
  if (images.overlay) {
    scene.overlay = SliceOverlay{{images.overlay, state.overlay.range, plain_colors(state.overlay)}, {}};
    scale_alpha(scene.overlay->layer.colormap, state.overlay.opacity.highest);
  }
  scene.size = size;
  scene.area = area_of(state.windows[static_cast<std::size_t>(axis)], *images.base, size);
  return scene;
}

}  // namespace oct::app
