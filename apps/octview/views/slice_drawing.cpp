#include "octview/views/slice_drawing.h"

#include "client/explanation.h"

namespace oct::app {

void SliceDrawing::update(const Document& document, const ViewState& state, PictureSize size) {
  if (source_.update(document, state)) look_.reset();
  const Look look{state.base, state.overlay, state.windows[static_cast<std::size_t>(axis_)], size};
  if (look_ == look) return;
  look_ = look;
  explanation_.clear();
  pixels_ = {};
  const SliceScene scene = slice_scene(state, axis_, source_.images(), size);
  area_ = scene.area;
  const PixelRectangle pixels = visible_pixels(image(), area_, size);
  if (pixels.is_empty()) return;
  set_scene(renderer_.handle(), scene, pixels);
  texture_.draw(static_cast<int>(pixels.width), static_cast<int>(pixels.height),
                [&] { checked(renderDisplay, renderer_.handle()); });
  explanation_ = explanation_of(explainDisplay, renderer_.handle());
  const SliceArea whole = whole_area(image());
  const bool is_part = area_.left > 0 || area_.top > 0 || area_.left + area_.width < whole.width ||
                       area_.top + area_.height < whole.height;
  if (is_part && !explanation_.empty()) explanation_ = "Of the part that is shown: " + explanation_;
  pixels_ = pixels;
}

}  // namespace oct::app
