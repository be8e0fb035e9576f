// Statistics of every layer of a document, found in the background.
#pragma once

#include <cstdint>
#include <optional>

#include "octview/model/background_task.h"
#include "octview/model/document.h"
#include "octview/model/statistics.h"

namespace oct::app {

struct LayerStatistics {
  std::optional<Statistics> base;
  std::optional<Statistics> overlay;
  std::optional<Statistics> surface;
  std::optional<Statistics> secondary;
};

class DataStatistics {
 public:
  // Once a frame. Of another file everything is found anew, of live volumes now and then. True when it has just been found.
  // now: seconds.
  bool follow(const Document& document, double now);

  bool is_busy() const { return task_.is_running() && !live_; }
  const LayerStatistics& layers() const { return layers_; }

 private:
  std::uint64_t revision_ = 0;
  bool live_ = false;
  double started_ = 0;
  LayerStatistics layers_;
  BackgroundTask<LayerStatistics> task_;
};

}  // namespace oct::app
