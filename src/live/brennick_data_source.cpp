#include "live/brennick_data_source.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "core/console.h"
#include "core/exception.h"
#include "core/log.h"
#include "core/timing_mark.h"
#include "live/standard_sequence.h"

namespace oct {
namespace {

// How long a source waits after errors that follow each other. A device that fails for ever fails at once.
class ErrorPause {
 public:
  std::chrono::milliseconds next() { return std::exchange(length_, std::min(2 * length_, longest)); }
  void reset() { length_ = shortest; }

 private:
  static constexpr std::chrono::milliseconds shortest{10};
  static constexpr std::chrono::milliseconds longest{500};
  std::chrono::milliseconds length_ = shortest;
};

}  // namespace

BrennickDataSource::BrennickDataSource(const std::shared_ptr<const DeviceLibrary>& library,
                                       OCTDeviceHandle device, ProcessingHandle processing)
    : BrennickDataSource(library, device, processing, [=](const StandardSettings& settings) {
        return std::make_unique<StandardSequence>(library->standard, device, processing, settings.camera,
                                                  settings.analog_input);
      }) {}

BrennickDataSource::BrennickDataSource(const std::shared_ptr<const DeviceLibrary>& library,
                                       OCTDeviceHandle device, ProcessingHandle processing,
                                       MakeSequence make_sequence)
    : library_(library),
      device_(device),
      processing_(processing),
      make_sequence_(std::move(make_sequence)),
      max_size_z_(sdk().getDevicePropertyInt(device, OCT_DEVICE_SPECTRUM_LENGTH) / 2),
      size_z_(max_size_z_),
      device_value_(sdk().getDevicePropertyFloat(device, OCT_DEVICE_DEPTH_RANGE)),
      measuring_(sdk(), device),
      thread_([this] { run(); }) {}

BrennickDataSource::~BrennickDataSource() {
  stop();
}

void BrennickDataSource::start(std::shared_ptr<LiveFeed> feed, ScanPatternHandle pattern) {
  if (!feed) throw StateError("Wrong order of execution");
  thread_.start([&](AcquisitionThread::Run run) {
    // A live renderer that a measurement left running when it ended by itself.
    if (feed_ && feed_ != feed) feed_->stop(std::exchange(claim_, no_claim));
    feed_ = std::move(feed);
    scan_pattern_ = pattern;
    run_ = run;
    cancelled_ = false;
    acquiring_ = true;
  });
}

AcquisitionThread::Run BrennickDataSource::ask_to_end(bool cancel) {
  return thread_.ask_to_end([&](AcquisitionThread::Run) {
    if (feed_) feed_->stop(claim_);
    if (cancel) cancelled_ = true;
  });
}

void BrennickDataSource::stop() {
  thread_.join(ask_to_end(false));
}

void BrennickDataSource::cancel() {
  const AcquisitionThread::Run asked = ask_to_end(true);
  measuring_.stop(asked);
  thread_.join(asked);
}

void BrennickDataSource::set_ref_intensity_callback(RefIntensityCallback callback) {
  const std::lock_guard lock(callback_mutex_);
  ref_intensity_callback_ = std::move(callback);
}

void BrennickDataSource::set_error_callback(const ErrorCallback& callback) {
  const std::lock_guard lock(callback_mutex_);
  error_callback_ = callback;
}

void BrennickDataSource::set_volume_callback(VolumeCallback callback) {
  const std::lock_guard lock(callback_mutex_);
  volume_callback_ = std::move(callback);
}

std::optional<std::string> BrennickDataSource::take_error() {
  const std::lock_guard lock(callback_mutex_);
  if (!has_unread_error_) return std::nullopt;
  std::string message(unread_error_.data());
  has_unread_error_ = false;
  return message;
}

double BrennickDataSource::ref_intensity() {
  ref_intensity_wanted_ = true;
  return ref_intensity_;
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

// That a measurement was cancelled is no error of the device's.
bool BrennickDataSource::report_device_error() {
  std::array<char, 512> text{};
  if (sdk().getError(text.data(), static_cast<int>(text.size())) == 0) return false;
  if (!cancelled_) report_error(text.data());
  return true;
}

void BrennickDataSource::report_error(const std::string& message) {
  ErrorCallback callback;
  {
    const std::lock_guard lock(callback_mutex_);
    keep_error(message);
    callback = error_callback_;
  }
  if (callback) return callback(message);
  write_error("An error occured: ", message);
  log() << "BrennickDataSource::thread: " << message;
}

void BrennickDataSource::keep_error(const std::string& message) {
  if (has_unread_error_) return;
  const std::size_t length = message.copy(unread_error_.data(), unread_error_.size() - 1);
  unread_error_[length] = '\0';
  has_unread_error_ = true;
}

void BrennickDataSource::report_reference_intensity() {
  RefIntensityCallback callback;
  {
    const std::lock_guard lock(callback_mutex_);
    callback = ref_intensity_callback_;
  }
  if (!callback && !ref_intensity_wanted_) return;
  const double intensity = sdk().getRelativeReferenceIntensity(device_, processing_);
  ref_intensity_ = intensity;
  if (callback) callback(intensity);
}

// After the volume has been handed over, so that the picture does not wait for the client.
void BrennickDataSource::report_volume(Measurement& measurement, LiveTime processed) {
  VolumeCallback callback;
  {
    const std::lock_guard lock(callback_mutex_);
    callback = volume_callback_;
  }
  if (!callback) return;
  const TimingMark mark("volume callback");
  if (const auto samples = measurement.samples(processed)) callback(*samples);
}

void BrennickDataSource::run() {
  try {
    acquire();
  } catch (const std::exception& error) {
    fail(error.what());
  } catch (...) {  // from a client's callback
    fail("An unknown error. ");
  }
  acquiring_ = false;
}

void BrennickDataSource::fail(const std::string& message) {
  thread_.end();
  report_error(message);
  report_device_error();  // the cause, maybe; left pending it would end the next measurement
}

void BrennickDataSource::acquire() {
  const TimingMark mark("BrennickDataSource::thread");
  Measurement measurement(sdk(), measuring_, run_, make_sequence_({camera_, analog_input_}));
  DeviceSequence& sequence = measurement.sequence();
  measuring_.start(run_, scan_pattern_);
  if (sdk().isError() == 0 && thread_.going_on()) sequence.fetch_first();
  if (report_device_error()) thread_.end();
  if (thread_.going_on()) sequence.process_first();
  LiveTime processed = std::chrono::steady_clock::now();
  measurement.read_geometry({size_z_, refractive_index_});
  if (thread_.going_on() && prepare(measurement)) {
    measurement.hand_over(*feed_, claim_, processed);
    report_volume(measurement, processed);
  }

  ErrorPause pause;
  while (thread_.going_on()) {
    {
      const TimingMark mark("fetch volume");
      sequence.fetch();
    }
    if (cancelled_) break;
    {
      const TimingMark mark("process volume");
      sequence.process();
    }
    processed = std::chrono::steady_clock::now();
    measurement.set_data_range();
    measurement.show_range(*feed_, claim_);
    const bool failed = report_device_error();
    if (failed && sequence.ends_by_itself()) thread_.end();
    report_reference_intensity();
    if (!thread_.going_on()) break;
    if (!failed && measurement.hand_over(*feed_, claim_, processed)) {
      report_volume(measurement, processed);
      pause.reset();
    } else {
      thread_.pause(pause.next());
    }
    if (feed_->is_gone()) throw StateError("The live renderer of the source was cleared. ");
  }
  if (cancelled_) report_device_error();
}

bool BrennickDataSource::prepare(Measurement& measurement) {
  measurement.read_analog();
  bool found = false;
  const bool asked = thread_.if_going_on([&] {
    claim_ = feed_->start(measurement.format());
    found = feed_->has_renderer();
    if (!found) return;
    measurement.show_range(*feed_, claim_);
    feed_->invalidate(claim_);
  });
  if (!asked) return false;
  if (!found) {
    wait_without_renderer(measurement.sequence());
    return false;
  }
  try {
    feed_->wait_for_transition(claim_);
  } catch (...) {
    feed_->stop(claim_);
    throw;
  }
  return thread_.going_on();
}

// Nothing can be drawn before the client sets a renderer and starts again.
void BrennickDataSource::wait_without_renderer(const DeviceSequence& sequence) {
  if (sequence.ends_by_itself()) thread_.end();
  acquiring_ = false;
  report_error(sequence.text_without_renderer());
  thread_.await_request();
}

}  // namespace oct
