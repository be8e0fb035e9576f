#include "live/brennick_data_source.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <system_error>

#include "core/exception.h"
#include "core/timing_mark.h"
#include "live/fast_opengl_volume_renderer.h"
#include "live/scope_exit.h"
#include "vec/vec.h"
#include "volume/volume_renderer.h"

namespace oct {
namespace {

// A live renderer's buffer: goes back without a volume unless it was filled.
class WriteBuffer {
 public:
  explicit WriteBuffer(FastOpenGLVolumeRenderer& rendering)
      : rendering_(rendering), data_(rendering.get_data_ptr()) {}
  ~WriteBuffer() {
    if (data_) rendering_.discard();
  }
  WriteBuffer(const WriteBuffer&) = delete;
  WriteBuffer& operator=(const WriteBuffer&) = delete;

  float* data() const { return data_; }
  void filled() {
    data_ = nullptr;
    rendering_.update();
  }

 private:
  FastOpenGLVolumeRenderer& rendering_;
  float* data_;
};

std::system_error deadlock() {
  return std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
}

Exception already_running() {
  return Exception("BrennickDataSource already running");
}

}  // namespace

BrennickDataSource::BrennickDataSource(std::shared_ptr<const DeviceLibrary> library, OCTDeviceHandle device,
                                       ProcessingHandle processing)
    : library_(std::move(library)),
      device_(device),
      processing_(processing),
      max_size_z_(sdk().getDevicePropertyInt(device, OCT_DEVICE_SPECTRUM_LENGTH) / 2),
      size_z_(max_size_z_),
      device_value_(sdk().getDevicePropertyFloat(device, OCT_DEVICE_DEPTH_RANGE)) {}

BrennickDataSource::~BrennickDataSource() {
  BrennickDataSource::stop();
}

std::unique_lock<std::mutex> BrennickDataSource::lock_idle() {
  if (running_) throw already_running();
  if (on_own_thread()) throw deadlock();
  std::unique_lock lock(thread_mutex_, std::try_to_lock);
  if (!lock || !idle()) throw already_running();
  return lock;
}

void BrennickDataSource::register_live_rendering(FastOpenGLVolumeRenderer* rendering) {
  const auto lock = lock_idle();
  live_renderer_ = rendering;
}

void BrennickDataSource::deregister_renderer() {
  const std::unique_lock lock(thread_mutex_, std::try_to_lock);
  if (lock && idle()) live_renderer_ = nullptr;
}

void BrennickDataSource::start(ScanPatternHandle pattern) {
  const auto lock = lock_idle();
  // A thread that a device error has ended is still joinable; assigning to it would end the process.
  if (thread_.joinable()) thread_.join();
  scan_pattern_ = pattern;
  if (!live_renderer_) throw Exception("Wrong order of execution");
  {
    const std::lock_guard request(request_mutex_);
    ++thread_number_;
    ended_ = false;
    running_ = true;
  }
  try {
    thread_ = std::thread([this] { run(); });
  } catch (...) {
    running_ = false;
    ended_ = true;
    throw;
  }
}

void BrennickDataSource::stop() {
  std::uint64_t asked = 0;
  {
    const std::lock_guard lock(request_mutex_);
    if (FastOpenGLVolumeRenderer* const rendering = live_renderer_) rendering->stop();
    running_ = false;
    asked = thread_number_;
  }
  if (on_own_thread()) throw deadlock();
  const std::lock_guard lock(thread_mutex_);
  // A thread that was started meanwhile has not been asked to end.
  if (thread_number_ == asked && thread_.joinable()) thread_.join();
}

void BrennickDataSource::await_end() {
  if (running_ || on_own_thread()) return;
  const std::lock_guard lock(thread_mutex_);
  if (!running_ && thread_.joinable()) thread_.join();
}

void BrennickDataSource::run() {
  own_thread_ = std::this_thread::get_id();
  try {
    thread();
  } catch (const std::exception& error) {
    running_ = false;
    report_error(error.what());
    report_device_error();  // the cause, maybe; left pending it would end the next measurement
  }
  own_thread_ = std::thread::id();
  ended_ = true;
}

void BrennickDataSource::set_ref_intensity_callback(RefIntensityCallback callback) {
  const std::lock_guard lock(callback_mutex_);
  ref_intensity_callback_ = std::move(callback);
}

void BrennickDataSource::set_error_callback(const ErrorCallback& callback) {
  const std::lock_guard lock(callback_mutex_);
  error_callback_ = callback;
}

void BrennickDataSource::set_size_z(std::int32_t size) {
  if (size < 1) throw std::invalid_argument("At least one depth sample must be kept. ");
  size_z_ = size;
  device_value_ = sdk().getDevicePropertyFloat(device_, OCT_DEVICE_DEPTH_RANGE);
}

void BrennickDataSource::set_refractive_index(double index) {
  if (!std::isfinite(index) || index <= 0.0) {
    throw std::invalid_argument("The refractive index must be above zero. ");
  }
  refractive_index_ = index;
}

bool BrennickDataSource::report_device_error() const {
  std::array<char, 512> text{};
  if (sdk().getError(text.data(), static_cast<int>(text.size())) == 0) return false;
  report_error(text.data());
  return true;
}

void BrennickDataSource::report_error(const std::string& message) const {
  ErrorCallback callback;
  {
    const std::lock_guard lock(callback_mutex_);
    callback = error_callback_;
  }
  if (callback) callback(message);
}

void BrennickDataSource::report_reference_intensity() const {
  RefIntensityCallback callback;
  {
    const std::lock_guard lock(callback_mutex_);
    callback = ref_intensity_callback_;
  }
  if (callback) callback(sdk().getRelativeReferenceIntensity(device_, processing_));
}

void BrennickDataSource::thread() {
  const TimingMark mark("BrennickDataSource::thread");
  const RawDataHandle raw = sdk().createRawData();
  const DataHandle data = sdk().createData();
  const DataHandle analog = analog_input_ ? sdk().createData() : nullptr;
  ScopeExit clean_up([&] {
    sdk().stopMeasurement(device_);
    if (raw) sdk().clearRawData(raw);
    if (data) sdk().clearData(data);
    if (analog) {
      live_renderer_.load()->set_secondary_data(nullptr, 0);
      sdk().clearData(analog);
    }
  });

  sdk().startMeasurement(device_, scan_pattern_, 0);
  if (sdk().isError() == 0) {
    sdk().setProcessedDataOutput(processing_, data);
    sdk().getRawDataEx(device_, raw, camera_);
    if (analog) sdk().getAnalogInputData(device_, analog);
  }
  if (report_device_error()) running_ = false;
  if (running_) sdk().executeProcessing(processing_, raw);

  // Asking for what could not be created would leave one more error pending.
  const Geometry geometry = data ? read_geometry(data) : Geometry();
  if (running_) {
    switch (prepare_rendering(geometry, analog)) {
      case Preparation::no_renderer:
        report_error(
            "Renderer not available for fast volume rendering. Please specify a volume rendering object.");
        // The measurement goes on, and the source counts as running, until the client stops it.
        clean_up.dismiss();
        return;
      case Preparation::stopped:
        break;
      case Preparation::done:
        copy_data(data, geometry);
    }
  }
  while (running_) {
    sdk().setProcessedDataOutput(processing_, data);
    sdk().getRawDataEx(device_, raw, camera_);
    sdk().executeProcessing(processing_, raw);
    if (analog) sdk().getAnalogInputData(device_, analog);
    sdk().setDataRange(data, geometry.depth_range, geometry.lateral_range1, geometry.lateral_range2);
    set_range(geometry);
    report_device_error();
    report_reference_intensity();
    if (running_) copy_data(data, geometry);
  }
}

BrennickDataSource::Geometry BrennickDataSource::read_geometry(DataHandle data) const {
  Geometry geometry;
  geometry.acquired.a_scans = sdk().getDataPropertyInt(data, OCT_DATA_SIZE_2);
  geometry.acquired.b_scans = sdk().getDataPropertyInt(data, OCT_DATA_SIZE_3);
  geometry.acquired.depth = sdk().getDataPropertyInt(data, OCT_DATA_SIZE_1);
  geometry.kept = geometry.acquired;
  geometry.kept.depth = size_z_;
  geometry.lateral_range1 = sdk().getDataPropertyFloat(data, OCT_DATA_RANGE_2);
  geometry.lateral_range2 = sdk().getDataPropertyFloat(data, OCT_DATA_RANGE_3);
  const double whole = sdk().getDataPropertyFloat(data, OCT_DATA_RANGE_1);
  if (geometry.acquired.depth > 0) {
    const double share =
        static_cast<double>(geometry.kept.depth) / static_cast<double>(geometry.acquired.depth);
    geometry.depth_range = whole * share / refractive_index_;
  }
  return geometry;
}

BrennickDataSource::Preparation BrennickDataSource::prepare_rendering(const Geometry& geometry,
                                                                      DataHandle analog) {
  FastOpenGLVolumeRenderer& rendering = *live_renderer_;
  {
    const std::lock_guard lock(request_mutex_);
    if (!running_) return Preparation::stopped;
    rendering.set_size(geometry.kept);
    if (analog) {
      const float* const values = sdk().getDataPtr(analog);
      rendering.set_secondary_data(values, sdk().getDataPropertyInt(analog, OCT_DATA_SIZE_1));
    }
    rendering.start();
    if (!rendering.get_renderer()) return Preparation::no_renderer;
    set_range(geometry);
    rendering.invalidate();
  }
  rendering.wait_for_transition();
  // A stop has released the wait, and maybe nothing was initialised.
  return running_ ? Preparation::done : Preparation::stopped;
}

// Depth is the geometric one; the renderer lets it run downwards.
void BrennickDataSource::set_range(const Geometry& geometry) const {
  VolumeRenderer* const renderer = live_renderer_.load()->get_renderer();
  if (!renderer || geometry.acquired.depth < 1) return;  // nothing was acquired that could have an extent
  renderer->set_range(geometry.depth_range, geometry.lateral_range1, geometry.lateral_range2);
}

void BrennickDataSource::copy_data(DataHandle data, const Geometry& geometry) const {
  const TimingMark mark("BrennickDataSource::copy_data");
  FastOpenGLVolumeRenderer* const rendering = live_renderer_;
  VolumeRenderer* const renderer = rendering ? rendering->get_renderer() : nullptr;
  if (!renderer) return;
  // Where they do not fit, another source has started on the same live renderer.
  if (renderer->settings().render_volume && rendering->get_size() == geometry.kept) {
    WriteBuffer buffer(*rendering);
    if (buffer.data() && rendering->get_size() == geometry.kept &&
        copy_volume(data, geometry, buffer.data())) {
      buffer.filled();
    }
  }
  if (renderer->settings().render_surface) copy_surface(data, *renderer);
}

// False when the device gives no samples, which it has reported.
bool BrennickDataSource::copy_volume(DataHandle data, const Geometry& geometry, float* destination) const {
  const VolumeExtent& acquired = geometry.acquired;
  const VolumeExtent& kept = geometry.kept;
  const auto a_scans = static_cast<std::size_t>(kept.a_scans) * static_cast<std::size_t>(kept.b_scans);
  const auto depth = static_cast<std::size_t>(kept.depth);
  const auto insufficient = [] { return Exception("Insufficient memory allocated."); };
  if (kept == acquired) {
    const int bytes = sdk().getDataPropertyInt(data, OCT_DATA_BYTE_COUNT);
    const float* const source = sdk().getDataPtr(data);
    if (bytes == 0 || !source) return false;
    // The device has changed its mind about the size.
    if (bytes < 0 || static_cast<std::size_t>(bytes) != a_scans * depth * sizeof(float)) throw insufficient();
    vec::copy(destination, source, a_scans * depth);
    return true;
  }
  // A-scans lie as far apart as at the start of the measurement.
  if (sdk().getDataPropertyInt(data, OCT_DATA_SIZE_1) < std::max(kept.depth, acquired.depth) ||
      acquired.depth < kept.depth || sdk().getDataPropertyInt(data, OCT_DATA_SIZE_2) < kept.a_scans ||
      sdk().getDataPropertyInt(data, OCT_DATA_SIZE_3) < kept.b_scans) {
    throw insufficient();
  }
  const float* const source = sdk().getDataPtr(data);
  if (!source) return false;
  vec::crop_copy(destination, source, a_scans, static_cast<std::size_t>(acquired.depth), depth);
  return true;
}

void BrennickDataSource::copy_surface(DataHandle data, VolumeRenderer& renderer) const {
  const DataHandle surface = sdk().createData();
  if (!surface) return;
  const ScopeExit clean_up([&] { sdk().clearData(surface); });
  sdk().determineSurface(data, surface);
  const int width = sdk().getDataPropertyInt(surface, OCT_DATA_SIZE_1);
  const int height = sdk().getDataPropertyInt(surface, OCT_DATA_SIZE_2);
  const auto scale = static_cast<float>(sdk().getDataPropertyFloat(data, OCT_DATA_RANGE_1));
  const float* const depths = sdk().getDataPtr(surface);
  if (depths) renderer.set_surface(width, height, scale, depths);
}

}  // namespace oct
