// The samples of a pane's section: those in memory at once, and finer ones from the file as soon as they have been read.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "octview/model/background_task.h"
#include "octview/model/slice_picture.h"

namespace oct::app {

class SliceSource {
 public:
  explicit SliceSource(SliceAxis axis) : axis_(axis) {}

  // Returns whether the images are others than before.
  bool update(const Document& document, const ViewState& state);

  const SliceImages& images() const { return images_; }
  // Finer samples are on their way, and so much of them has come.
  bool is_reading() const { return task_.is_running(); }
  double share() const { return task_.share(); }
  bool is_finest() const { return is_finest_; }
  const std::string& error() const { return error_; }  // why finer samples did not come; empty: they did

 private:
  // What the samples depend on.
  struct Samples {
    std::uint64_t revision = 0;
    std::ptrdiff_t position = 0;
    EnFace enface;
    bool below_surface = false;
    bool overlay = false;
    std::array<double, 3> step{};

    bool operator==(const Samples&) const = default;
  };

  void read(const Document& document, const ViewState& state);
  bool take();

  const SliceAxis axis_;
  std::optional<Samples> samples_;
  SliceImages images_;
  bool is_finest_ = true;
  bool is_owed_ = false;  // a reading of these samples
  std::string error_;
  std::optional<Samples> reads_;       // what the task's images are of
  std::shared_ptr<SliceFiles> files_;  // of that document; of the task while it runs
  BackgroundTask<SliceImages> task_;
};

}  // namespace oct::app
