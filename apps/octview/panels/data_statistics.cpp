#include "octview/panels/data_statistics.h"

#include <utility>

namespace oct::app {
namespace {

constexpr double live_interval = 2;  // seconds

LayerStatistics find_statistics(const Document& document, const ProgressFunction& progress) {
  LayerStatistics layers;
  layers.base = statistics_of(document.volume->voxels, document.not_finite, progress);
  if (document.overlay) layers.overlay = statistics_of(document.overlay->voxels, 0, progress);
  if (document.surface) layers.surface = statistics_of(document.surface->values, 0, progress);
  if (document.secondary) layers.secondary = statistics_of(document.secondary->values, 0, progress);
  return layers;
}

}  // namespace

bool DataStatistics::follow(const Document& document, double now) {
  const bool live = document.files.base.path.empty();
  const bool rests = live && live_ && (task_.is_running() || now < started_ + live_interval);
  if (revision_ != document.revision && !rests) {
    if (!(live && live_)) layers_ = {};
    revision_ = document.revision;
    live_ = live;
    started_ = now;
    if (document) {  // what it reads is shared with the task, whatever is opened meanwhile
      task_.start("Counting values", [document](const ProgressFunction& progress) {
        return find_statistics(document, progress);
      });
    }
  }
  std::optional<BackgroundTask<LayerStatistics>::Outcome> outcome = task_.take();
  if (!outcome || !outcome->result) return false;
  layers_ = std::move(*outcome->result);
  return true;
}

}  // namespace oct::app
