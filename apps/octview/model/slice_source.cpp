#include "octview/model/slice_source.h"

#include <utility>

#include "octview/model/slice_position.h"

namespace oct::app {

bool SliceSource::update(const Document& document, const ViewState& state) {
  const SlicePosition place = slice_position(document, state, axis_);
  const Samples samples{document.revision,   place.position,        state.enface,
                        place.below_surface, state.overlay.visible, document.spacing().mm};
  const bool changed = samples_ != samples;
  if (changed) {
    images_ = slice_images(document, state, axis_);
    samples_ = samples;
    error_.clear();
    is_finest_ = !document.volume->is_reduced();
    is_owed_ = has_finer_slices(document);
    task_.cancel();  // which takes effect with the next frame of the file
  }
  const bool came = take();
  if (is_owed_ && !task_.is_running()) read(document, state);
  return changed || came;
}

void SliceSource::read(const Document& document, const ViewState& state) {
  is_owed_ = false;
  if (!reads_ || reads_->revision != document.revision) files_ = std::make_shared<SliceFiles>();
  reads_ = samples_;
  task_.start("Reading the section",
              [document, state, axis = axis_, files = files_](const ProgressFunction& progress) {
                return finest_slice_images(document, state, axis, *files, progress);
              });
}

// What was read for other samples is of no use any more.
bool SliceSource::take() {
  auto outcome = task_.take();
  if (!outcome || reads_ != samples_) return false;
  error_ = outcome->error;
  if (!outcome->result) return false;
  images_ = std::move(*outcome->result);
  is_finest_ = true;
  return true;
}

}  // namespace oct::app
