#include "octview/model/slice_picture.h"

#include <algorithm>
#include <utility>

#include "data/file_slices.h"
#include "octview/model/layer_colors.h"
#include "octview/model/slice_position.h"

namespace oct::app {
namespace {

// Which voxels of the memory a section of the file lies in.
Image slice_in_memory(const VolumeData& volume, SliceAxis axis, std::ptrdiff_t position, EnFace enface,
                      const LateralMap* surface) {
  const auto factor = static_cast<std::ptrdiff_t>(volume.reduction[axes_of(axis).across]);
  enface.layers = std::max<std::size_t>(1, enface.layers / volume.reduction[0]);
  return slice_of(volume, axis, position / factor, enface, surface);
}

Image enlarged(const Image& image, std::size_t down, std::size_t right, std::size_t depth,
               std::size_t ascans) {
  Image large{depth, ascans, std::vector<float>(depth * ascans), image.spacing};
  for (std::size_t x = 0; x < ascans; ++x) {
    const float* const column = &image.samples[x / right * image.depth];
    for (std::size_t y = 0; y < depth; ++y) large.samples[x * depth + y] = column[y / down];
  }
  return large;
}

std::shared_ptr<const Image> shared_image(const Document& document, SliceAxis axis, Image image) {
  image.spacing = section_spacing(document.spacing(), axis);
  return std::make_shared<const Image>(std::move(image));
}

std::shared_ptr<const Image> image_of(const Document& document, const VolumeData& volume,
                                      const ViewState& state, SliceAxis axis) {
  Image image = slice_in_memory(volume, axis, slice_position(document, state, axis).position, state.enface,
                                document.surface.get());
  if (volume.is_reduced()) {
    const SliceAxes axes = axes_of(axis);
    image = enlarged(image, volume.reduction[axes.down], volume.reduction[axes.right],
                     volume.file_size[axes.down], volume.file_size[axes.right]);
  }
  return shared_image(document, axis, std::move(image));
}

std::shared_ptr<const Image> finest_image_of(const Document& document, const VolumeData& volume,
                                             const DataFile& path, bool decibels, const ViewState& state,
                                             SliceAxis axis, std::optional<VolumeFile>& file,
                                             const ProgressFunction& progress) {
  if (!volume.is_reduced()) return image_of(document, volume, state, axis);
  if (!file) file.emplace(path);
  if (file->sizes() != volume.file_size)
    throw ReadError(path.path, "the file has changed since it was opened");
  const std::ptrdiff_t position = slice_position(document, state, axis).position;
  const FileSliceOptions options{decibels, true, volume.voxels.size()};
  return shared_image(
      document, axis,
      slice_of_file(*file, axis, position, state.enface, document.surface.get(), options, progress));
}

}  // namespace

SliceImages slice_images(const Document& document, const ViewState& state, SliceAxis axis) {
  SliceImages images{image_of(document, *document.volume, state, axis), nullptr};
  if (document.overlay && state.overlay.visible)
    images.overlay = image_of(document, *document.overlay, state, axis);
  return images;
}

// What came through a pipe is gone.
bool has_finer_slices(const Document& document) {
  return document.volume->is_reduced() && document.files.base.path != "-";
}

SliceImages finest_slice_images(const Document& document, const ViewState& state, SliceAxis axis,
                                SliceFiles& files, const ProgressFunction& progress) {
  if (!has_finer_slices(document)) return slice_images(document, state, axis);
  const SessionFiles& paths = document.files;
  SliceImages images{finest_image_of(document, *document.volume, paths.base, paths.decibels, state, axis,
                                     files.base, progress),
                     nullptr};
  if (document.overlay && state.overlay.visible)
    images.overlay = finest_image_of(document, *document.overlay, paths.overlay, false, state, axis,
                                     files.overlay, progress);
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
