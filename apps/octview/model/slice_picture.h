// The pictures of sections that the viewer shows.
#pragma once

#include <memory>

#include "octview/model/document.h"
#include "octview/model/view_state.h"
#include "scene/slice_scene.h"

namespace oct::app {

struct SliceImages {
  std::shared_ptr<const Image> base;
  std::shared_ptr<const Image> overlay;  // none where none is shown
};

SliceImages slice_images(const Document& document, const ViewState& state, SliceAxis axis);

// Of the images above.
SliceScene slice_scene(const ViewState& state, SliceAxis axis, const SliceImages& images, PictureSize size);

}  // namespace oct::app
