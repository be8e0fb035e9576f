#include "octview/save/picture_file.h"

#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "command_line/shell_words.h"
#include "data/figure/figure.h"
#include "data/formats/png_writer.h"
#include "octview/model/octrender_command.h"
#include "octview/model/slice_picture.h"
#include "octview/model/slice_position.h"
#include "octview/model/volume_picture.h"
#include "scene/offscreen_picture.h"
#include "scene/picture_texts.h"

namespace oct::app {
namespace {

Picture on_paper(const Document& document, const VolumeScene& scene, const Picture& picture) {
  Figure figure;
  figure.picture = picture;
  figure.color_bar = {scene.base.colormap, scene.base.range, document.files.decibels ? "dB" : ""};
  const std::optional<double> mm = document.spacing().is_known() ? pixel_mm(scene) : std::nullopt;
  if (mm) figure.pixel_mm = {*mm, *mm};
  return figure_of(figure, {});
}

}  // namespace

DrawnPicture draw_picture_of(const Document& document, const ViewState& state, const PictureOrder& order,
                             const ProgressFunction& progress) {
  if (order.pane != Pane::volume) {
    const auto axis = static_cast<SliceAxis>(order.pane);
    progress(0, 1);
    SliceFiles files;
    const SliceImages images = finest_slice_images(document, state, axis, files, progress);
    SlicePicture drawn = render_slice(slice_scene(state, axis, images, order.size));
    return {std::move(drawn.picture), std::move(drawn.explanation)};
  }
  ViewState shown = state;
  follow_cursor(document, shown);
  const VolumeScene scene = volume_scene(document, shown, order.size);
  DrawnPicture result;
  result.explanation = render_volume(
      scene, 1, [&](unsigned, const Picture& picture) { result.picture = picture; }, largest_tile, progress);
  if (order.figure) result.picture = on_paper(document, scene, result.picture);
  return result;
}

std::string save_picture(const Document& document, const ViewState& state, const PictureOrder& order,
                         const ProgressFunction& progress) {
  PngTexts texts;
  try {
    std::vector<std::string> words =
        pane_command(document, state, order.pane, order.size, to_utf8(order.file));
    if (order.figure) words.emplace_back("--figure");
    texts = picture_texts("octrender " + shell_words(words));
  } catch (const std::runtime_error&) {
    texts = picture_texts("octview");  // nothing that octrender can be told
  }
  const DrawnPicture drawn = draw_picture_of(document, state, order, progress);
  write_png(order.file, drawn.picture, texts);
  return drawn.explanation;
}

}  // namespace oct::app
