#include "scene/live_view.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <future>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "client/explanation.h"
#include "client/offscreen_target.h"
#include "client/renderers.h"
#include "scene/device_error.h"
#include "scene/live_source.h"

namespace oct::app {
namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr std::chrono::milliseconds progress_interval{100};

Clock::duration ticks(double seconds) {
  return std::chrono::duration_cast<Clock::duration>(Seconds(seconds));
}

// What the three threads of a view tell each other.
class Exchange {
 public:
  void fail(std::exception_ptr error) {
    const std::lock_guard lock(mutex_);
    if (!error_) error_ = std::move(error);
    changed_.notify_all();
  }

  void give(std::vector<std::uint8_t> pixels, std::string explanation) {
    const std::lock_guard lock(mutex_);
    pictures_.push_back(std::move(pixels));
    explanation_ = std::move(explanation);
    changed_.notify_all();
  }

  // Pictures that came meanwhile, or none after a while. Throws the error that ends the view.
  std::vector<std::vector<std::uint8_t>> wait() {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, progress_interval, [this] { return error_ || !pictures_.empty(); });
    if (error_) std::rethrow_exception(error_);
    return std::exchange(pictures_, {});
  }

  std::string last_explanation() {
    const std::lock_guard lock(mutex_);
    return explanation_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::exception_ptr error_;
  std::string explanation_;  // of the last picture
  std::vector<std::vector<std::uint8_t>> pictures_;
};

void on_error(const char* message, void* exchange) {
  const DeviceError error("acquisition failed: " + std::string(message));
  static_cast<Exchange*>(exchange)->fail(std::make_exception_ptr(error));
}

OctLiveStatistics statistics_of(LiveVolumeRenderingHandle live) {
  OctLiveStatistics statistics{};
  statistics.size = sizeof statistics;
  checked(getLiveStatistics, live, &statistics);
  return statistics;
}

// How long frames take, from the first one that shows a volume on.
class FrameTimes {
 public:
  void add(Clock::time_point start, Clock::time_point end, bool shows_volumes) {
    const std::lock_guard lock(mutex_);
    if (begin_) {
      ++frames_;
      worst_ = std::max(worst_, end - start);
    } else if (shows_volumes) {
      begin_ = end;
    }
  }

  std::optional<Clock::time_point> begin() const {
    const std::lock_guard lock(mutex_);
    return begin_;
  }

  void report(LiveResult& result) const {
    const std::lock_guard lock(mutex_);
    if (begin_) result.seconds = Seconds(Clock::now() - *begin_).count();
    result.frames = frames_;
    result.worst_frame = std::chrono::duration<double, std::milli>(worst_).count();
  }

 private:
  mutable std::mutex mutex_;
  std::optional<Clock::time_point> begin_;
  unsigned frames_ = 0;
  Clock::duration worst_{};
};

// Draws frames on a thread of its own, from construction to end().
class RenderingThread {
 public:
  // Throws what goes wrong before the first frame.
  RenderingThread(const LiveScene& scene, const LiveSettings& settings, Exchange& exchange)
      : scene_(scene), settings_(settings), exchange_(exchange) {
    std::promise<LiveVolumeRenderingHandle> ready;
    std::future<LiveVolumeRenderingHandle> live = ready.get_future();
    thread_ = std::jthread([this, promise = std::move(ready)]() mutable { run(promise); });
    live_ = live.get();
  }
  ~RenderingThread() { end(); }
  RenderingThread(const RenderingThread&) = delete;
  RenderingThread& operator=(const RenderingThread&) = delete;

  LiveVolumeRenderingHandle live() const { return live_; }
  const FrameTimes& times() const { return times_; }

  // The source must have been stopped: the last frame frees the OpenGL objects.
  void end() {
    ending_ = true;
    if (thread_.joinable()) thread_.join();
  }

 private:
  void run(std::promise<LiveVolumeRenderingHandle>& ready) {
    bool started = false;
    try {
      OffscreenTarget target;
      const LiveRendering rendering;
      set_scene(rendering.renderer(), scene_);
      started = true;
      ready.set_value(rendering.live());
      try {
        draw(target, rendering);
      } catch (...) {
        exchange_.fail(std::current_exception());
      }
      // The source may still be running, after an error; the live renderer must outlive it.
      while (!ending_) std::this_thread::sleep_for(std::chrono::milliseconds(1));
      ::renderVolume(rendering.live());
    } catch (...) {
      if (!started) ready.set_exception(std::current_exception());
    }
  }

  void draw(OffscreenTarget& target, const LiveRendering& rendering) {
    const LiveVolumeRenderingHandle live = rendering.live();
    std::vector<std::uint8_t> pixels;
    unsigned snapshots = 0;
    Clock::time_point next = Clock::now();
    while (!ending_) {
      const Clock::time_point start = Clock::now();
      target.render(scene_.view.size.width, scene_.view.size.height, pixels,
                    [&] { checked(::renderVolume, live); });
      const Clock::time_point end = Clock::now();
      times_.add(start, end, statistics_of(live).shown > 0);
      if (snapshots < settings_.snapshots && is_due(snapshots, end)) {
        ++snapshots;
        exchange_.give(pixels, explanation_of(explainFrame, rendering.renderer()));
      }
      if (settings_.frames_per_second > 0) {
        next = std::max(next + ticks(1 / settings_.frames_per_second), end);
        std::this_thread::sleep_until(next);
      }
    }
  }

  bool is_due(unsigned snapshot, Clock::time_point now) const {
    const auto begin = times_.begin();
    return begin && now >= *begin + ticks(settings_.seconds * (snapshot + 1) / settings_.snapshots);
  }

  const LiveScene& scene_;
  const LiveSettings& settings_;
  Exchange& exchange_;
  FrameTimes times_;
  std::atomic<bool> ending_ = false;
  LiveVolumeRenderingHandle live_ = nullptr;
  std::jthread thread_;
};

}  // namespace

void set_scene(VolumeRendererHandle renderer, const LiveScene& scene) {
  set_view(renderer, scene.view);
  checked(setAngles, renderer, scene.view.angles[0], scene.view.angles[1]);
  set_colors(renderer, ColoredData::volume, scene.volume.colormap, scene.volume.range);
  if (scene.surface) {
    set_colors(renderer, ColoredData::surface, scene.surface->colormap, scene.surface->range);
  }
  if (scene.analog) {
    set_colors(renderer, ColoredData::secondary, scene.analog->colormap, scene.analog->range);
    checked(setRendererSecondarySliceIndex, renderer, scene.analog_channel);
  }
  checked(setRenderElements, renderer, 1, int{scene.surface.has_value()});
}

LiveResult show_live(const LiveDevice& device, const LiveScene& scene, const LiveSettings& settings,
                     const LiveEvents& events) {
  Exchange exchange;
  RenderingThread rendering(scene, settings, exchange);
  LiveSource source(device, settings.source);
  source.announce(&on_error, &exchange);
  source.start(rendering.live());
  for (unsigned taken = 0; taken < settings.snapshots;) {
    for (const std::vector<std::uint8_t>& pixels : exchange.wait()) {
      events.snapshot(taken++, to_picture(scene.view.size, pixels));
    }
    const auto begin = rendering.times().begin();
    events.progress(begin ? Seconds(Clock::now() - *begin).count() : 0.0);
  }
  LiveResult result;
  result.explanation = exchange.last_explanation();
  result.volumes = statistics_of(rendering.live());
  rendering.times().report(result);
  auto& [depth, a_scans, b_scans] = result.size;
  checked(getLiveVolumeRenderingSize, rendering.live(), &depth, &a_scans, &b_scans);
  source.stop();
  return result;
}

}  // namespace oct::app
