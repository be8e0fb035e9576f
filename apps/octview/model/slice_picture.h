// The pictures of sections that the viewer shows.
#pragma once

#include <memory>
#include <optional>

#include "data/progress_function.h"
#include "data/volume_file.h"
#include "octview/model/document.h"
#include "octview/model/view_state.h"
#include "scene/slice_scene.h"

namespace oct::app {

struct SliceImages {
  std::shared_ptr<const Image> base;
  std::shared_ptr<const Image> overlay;  // none where none is shown
};

// From memory, at once. Where that has the volume reduced, a voxel fills the samples that it stands for.
SliceImages slice_images(const Document& document, const ViewState& state, SliceAxis axis);

// The files of a document, opened by whoever reads from them first.
struct SliceFiles {
  std::optional<VolumeFile> base;
  std::optional<VolumeFile> overlay;
};

// True where there is more in the document's files than in memory.
bool has_finer_slices(const Document& document);
// The same sections in full resolution, however long that takes. Throws a ReadError, and what the progress function throws.
SliceImages finest_slice_images(const Document& document, const ViewState& state, SliceAxis axis,
                                SliceFiles& files, const ProgressFunction& progress);

// Of the images above.
SliceScene slice_scene(const ViewState& state, SliceAxis axis, const SliceImages& images, PictureSize size);

}  // namespace oct::app
