#include "data/image_reader.h"

#include <utility>

namespace oct::app {
namespace {

Image image_of(const Raster& raster, bool columns_are_depth) {
  Image image;
  image.depth = columns_are_depth ? raster.columns : raster.rows;
  image.ascans = columns_are_depth ? raster.rows : raster.columns;
  image.samples.resize(raster.samples.size());
  place(raster, image.samples.data(), columns_are_depth ? 1 : image.depth,
        columns_are_depth ? image.depth : 1);
  return image;
}

// One row, or one column, of every frame makes the image.
LoadedImage load_cross_section(const DataFile& file, OpenData& data, const FrameChoice& choice,
                               const ProgressFunction& progress) {
  const std::size_t frames = data.frames->frame_count();
  const bool from_rows = data.axes[1] == Axis::bscan;
  LoadedImage result;
  Raster section{frames, 0, {}};
  std::size_t first_samples = 0;
  for (std::size_t frame = 0; frame < frames; ++frame) {
    const Raster raster = data.frames->read(frame, no_progress);
    progress(frame * raster.samples.size(), frames * raster.samples.size());
    if (frame == 0) {
      result.frame_count = from_rows ? raster.rows : raster.columns;
      result.frame = choose_frame(file.path, result.frame_count, choice);
      section.columns = from_rows ? raster.columns : raster.rows;
      first_samples = raster.samples.size();
    }
    if (raster.samples.size() != first_samples) throw other_size(file.path, frame);
    const std::size_t step = from_rows ? 1 : raster.columns;
    const std::size_t first = from_rows ? result.frame * raster.columns : result.frame;
    for (std::size_t i = 0; i < section.columns; ++i)
      section.samples.push_back(raster.samples[first + i * step]);
  }
  result.image = image_of(section, data.axes[from_rows ? 0 : 1] == Axis::depth);
  return result;
}

}  // namespace

LoadedImage load_image(const DataFile& file, const FrameChoice& choice, const ProgressFunction& progress) {
  OpenData data = open_data(file);
  LoadedImage result;
  if (data.axes[2] == Axis::bscan) {
    result.frame_count = data.frames->frame_count();
    result.frame = choose_frame(file.path, result.frame_count, choice);
    result.image = image_of(data.frames->read(result.frame, progress), data.axes[0] == Axis::depth);
  } else {
    result = load_cross_section(file, data, choice, progress);
  }
  result.image.spacing = voxel_spacing(*data.frames, data.axes);
  return result;
}

}  // namespace oct::app
