#include "octview/live/live_session.h"

#include <array>
#include <exception>
#include <mutex>
#include <new>
#include <utility>

#include "client/checked.h"
#include "octview/live/volume_tap.h"

namespace oct::app {
namespace {

// How old the copy of a volume is at most that remains when nobody looks at samples.
constexpr std::chrono::milliseconds copy_interval{500};

DeviceSetup device_setup(const LiveSetup& setup) {
  DeviceSetup device = setup.device;
  if (setup.recording) device.playback = *setup.recording;
  return device;
}

// Of the volumes that come, in millimetres.
std::array<double, 3> extent_of(const LiveSetup& setup, const LiveDevice& device) {
  const auto spectrum = static_cast<double>(setup.device.scan.spectrum_length);
  const double whole = setup.recording ? static_cast<double>(setup.recording->depth) : spectrum / 2;
  const double share = setup.source.size_z.value_or(whole) / whole;
  return {device.depth_range() * share / setup.source.refractive_index, setup.device.scan.width,
          setup.device.scan.length};
}

// From the library that the device was made with.
LiveSource source_of(const LiveDevice& device, const LiveSetup& setup) {
  checked(setDeviceLibrary, setup.device.library.c_str());
  return {device, setup.source};
}

}  // namespace

// Made and ended on the thread of the work.
class LiveSession::Device {
 public:
  Device(const LiveSetup& setup, VolumeRecorder& recorder)
      : device_(device_setup(setup)),
        tap_(extent_of(setup, device_), recorder),
        source_(source_of(device_, setup)) {
    source_.announce([](const char* text, void* device) { static_cast<Device*>(device)->set_error(text); },
                     this);
    source_.hand_volumes_to(
        [](const float* samples, int depth, int a_scans, int b_scans, unsigned long long index,
           unsigned long long nanoseconds, void* device) {
          const std::array size{static_cast<std::size_t>(depth), static_cast<std::size_t>(a_scans),
                                static_cast<std::size_t>(b_scans)};
          static_cast<Device*>(device)->take({samples, size, index, nanoseconds});
        },
        this);
  }
  ~Device() {
    try {
      source_.cancel();
    } catch (const std::exception&) {
      // Its end waits for what cannot be cancelled.
    }
  }
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;

  LiveSource& source() { return source_; }
  VolumeTap& tap() { return tap_; }
  // What the device says, until the next volume comes. Empty: nothing.
  std::string error() const {
    const std::lock_guard lock(mutex_);
    return error_;
  }

 private:
  void set_error(const char* text) {
    const std::lock_guard lock(mutex_);
    error_ = text;
  }

  void take(const ToldVolume& volume) {
    set_error("");
    try {
      tap_.take(volume);
    } catch (const std::bad_alloc&) {
      set_error("There is no memory for a copy of the volume.");
    }
  }

  LiveDevice device_;
  VolumeTap tap_;
  mutable std::mutex mutex_;
  std::string error_;
  LiveSource source_;  // ends before what its functions use
};

struct LiveSession::Opening {
  std::mutex mutex;
  bool done = false;
  std::unique_ptr<Device> device;  // none: the error says why
  std::string error;
};

LiveSession::LiveSession() = default;

LiveSession::~LiveSession() {
  end();
}

void LiveSession::start(const LiveSetup& setup) {
  end();
  error_.clear();
  if (!renderer_) renderer_.emplace();
  recorder_.clear();
  statistics_ = {};
  ++starts_;
  state_ = State::opening;
  opening_ = std::make_shared<Opening>();
  work_.add([this, setup, opening = opening_] {
    std::unique_ptr<Device> device;
    std::string error;
    try {
      device = std::make_unique<Device>(setup, recorder_);
    } catch (const std::exception& failure) {
      error = failure.what();
    }
    const std::lock_guard lock(opening->mutex);
    opening->device = std::move(device);
    opening->error = std::move(error);
    opening->done = true;
  });
}

void LiveSession::stop() {
  end();
  error_.clear();
  state_ = State::off;
}

void LiveSession::end() {
  // A device that is still being opened, or just was, ends where it was made.
  if (opening_) work_.add([opening = std::exchange(opening_, nullptr)] {});
  if (live_) statistics_ = current_statistics();
  if (device_) {
    if (auto latest = device_->tap().latest()) latest_ = std::move(latest);
    work_.add([device = std::shared_ptr<Device>(std::move(device_))]() mutable { device.reset(); });
  }
  live_.reset();  // lets go of the source, wherever that is
}

void LiveSession::update() {
  if (opening_) take_over();
  if (device_) watch();
  if (live_ && !std::exchange(drawn_, false)) hide();
}

// The source waits with its first volume for a frame. Later ones that are hidden come without any.
void LiveSession::hide() {
  try {
    if (std::exchange(scene_, std::nullopt)) checked(setRenderElements, renderer_->handle(), 0, 0);
    if (!device_->tap().latest()) checked(::renderVolume, live_->get());
  } catch (const RenderingError& failure) {
    error_ = failure.what();
  }
}

void LiveSession::take_over() {
  {
    const std::lock_guard lock(opening_->mutex);
    if (!opening_->done) return;
    device_ = std::move(opening_->device);
    error_ = std::move(opening_->error);
  }
  opening_.reset();
  if (!device_) {
    state_ = State::failed;
    return;
  }
  try {
    live_.emplace(createLiveRendering, clearLiveRendering);
    checked(setLiveVolumeRenderingRenderer, live_->get(), renderer_->handle());
    device_->source().start(live_->get());
    state_ = State::running;
  } catch (const std::exception& failure) {
    end();
    error_ = failure.what();
    state_ = State::failed;
  }
}

void LiveSession::watch() {
  const bool running = device_->source().is_running();
  error_ = device_->error();
  if (!running) {
    end();
    if (error_.empty()) error_ = "The device has ended the measurement.";
    state_ = State::failed;
    return;
  }
  if (std::chrono::steady_clock::now() - requested_ > copy_interval) request_volume();
}

void LiveSession::draw(const LiveScene& scene) {
  if (!live_) return;
  drawn_ = true;
  if (scene_ != scene) {
    scene_.reset();
    set_scene(renderer_->handle(), scene);
    scene_ = scene;
  }
  checked(::renderVolume, live_->get());
}

VolumeRendererHandle LiveSession::renderer() const {
  return live_ ? renderer_->handle() : nullptr;
}

OctLiveStatistics LiveSession::statistics() const {
  return live_ ? current_statistics() : statistics_;
}

OctLiveStatistics LiveSession::current_statistics() const {
  OctLiveStatistics statistics{};
  statistics.size = sizeof statistics;
  checked(getLiveStatistics, live_->get(), &statistics);
  return statistics;
}

void LiveSession::request_volume() {
  if (!device_) return;
  requested_ = std::chrono::steady_clock::now();
  device_->tap().request();
}

std::shared_ptr<const LiveVolume> LiveSession::latest() const {
  return device_ ? device_->tap().latest() : latest_;
}

}  // namespace oct::app
