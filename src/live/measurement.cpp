#include "live/measurement.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "core/exception.h"
#include "core/timing_mark.h"
#include "volume/volume_renderer.h"

namespace oct {
namespace {

// The device has changed its mind about a size.
DeviceError insufficient() {
  return DeviceError("Insufficient memory allocated.");
}

// A lent buffer: goes back without a volume unless it was filled.
class Loan {
 public:
  Loan(LiveFeed& feed, LiveClaim claim) : feed_(feed), data_(feed.take(claim)) {}
  ~Loan() {
    if (data_) feed_.give_back();
  }
  Loan(const Loan&) = delete;
  Loan& operator=(const Loan&) = delete;

  float* data() const { return data_; }
  void filled(LiveDelivery& delivery) {
    data_ = nullptr;
    feed_.fill(delivery);
  }

 private:
  LiveFeed& feed_;
  float* data_;
};

// Of a cube. Smaller bricks take longer than the copy that they are made with allows.
constexpr int live_brick_side = 8;

std::size_t sample_count(std::int64_t depth, const VolumeExtent& extent) {
  return static_cast<std::size_t>(depth) * static_cast<std::size_t>(extent.a_scans) *
         static_cast<std::size_t>(extent.b_scans);
}

}  // namespace

void MeasuringDevice::start(AcquisitionThread::Run run, ScanPatternHandle pattern) {
  sdk_.startMeasurement(device_, pattern, 0);
  const std::lock_guard lock(mutex_);
  measuring_ = run;
}

void MeasuringDevice::stop(AcquisitionThread::Run run) {
  const std::lock_guard lock(mutex_);
  if (measuring_ != run) return;
  measuring_ = 0;
  sdk_.stopMeasurement(device_);
}

Measurement::Measurement(const StandardDeviceFunctions& sdk, MeasuringDevice& device,
                         AcquisitionThread::Run run, std::unique_ptr<DeviceSequence> sequence)
    : sdk_(sdk), device_(device), run_(run), sequence_(std::move(sequence)) {}

Measurement::~Measurement() {
  device_.stop(run_);
}

void Measurement::read_geometry(const Cut& cut) {
  const DataHandle data = sequence_->volume();
  if (!data) return;  // asking for what could not be created would leave one more error pending
  acquired_.a_scans = sdk_.getDataPropertyInt(data, OCT_DATA_SIZE_2);
  acquired_.b_scans = sdk_.getDataPropertyInt(data, OCT_DATA_SIZE_3);
  acquired_.depth = sdk_.getDataPropertyInt(data, OCT_DATA_SIZE_1);
  kept_ = acquired_;
  kept_.depth = cut.kept_depth;
  lateral_range1_ = sdk_.getDataPropertyFloat(data, OCT_DATA_RANGE_2);
  lateral_range2_ = sdk_.getDataPropertyFloat(data, OCT_DATA_RANGE_3);
  const double whole = sdk_.getDataPropertyFloat(data, OCT_DATA_RANGE_1);
  if (acquired_.depth < 1) return;
  const double share = static_cast<double>(kept_.depth) / static_cast<double>(acquired_.depth);
  depth_range_ = whole * share / cut.refractive_index;
}

void Measurement::read_analog() {
  const DataHandle analog = sequence_->analog();
  if (!analog) return;
  analog_samples_ = sdk_.getDataPtr(analog);
  const int width = sdk_.getDataPropertyInt(analog, OCT_DATA_SIZE_1);
  secondary_width_ = analog_samples_ ? std::max(width, 0) : 0;
}

void Measurement::set_data_range() const {
  sequence_->set_range(depth_range_, lateral_range1_, lateral_range2_);
}

// Depth is the geometric one; the renderer lets it run downwards.
void Measurement::show_range(LiveFeed& feed, LiveClaim claim) const {
  if (acquired_.depth < 1) return;  // nothing was acquired that could have an extent
  feed.with_renderer(claim, [this](VolumeRenderer& renderer) {
    renderer.set_range(depth_range_, lateral_range1_, lateral_range2_);
  });
}

bool Measurement::hand_over(LiveFeed& feed, LiveClaim claim, LiveTime processed) {
  const TimingMark mark("BrennickDataSource::copy_data");
  const int lost = device_.lost_volumes();
  feed.count_acquired(claim, static_cast<std::uint64_t>(std::max(lost - lost_volumes_, 0)));
  lost_volumes_ = lost;
  ++volumes_;
  if (!sequence_->has_volume(acquired_.depth)) return true;
  bool volume = false;
  bool surface = false;
  feed.with_renderer(claim, [&](const VolumeRenderer& renderer) {
    const VolumeSettings settings = renderer.settings();
    volume = settings.render_volume;
    surface = settings.render_surface;
  });
  const bool given = !volume || hand_over_volume(feed, claim, processed);
  if (surface) hand_over_surface(feed, claim);
  return given;
}

// While the buffer is lent nothing but the copy happens: the rendering thread may be waiting for it.
bool Measurement::hand_over_volume(LiveFeed& feed, LiveClaim claim, LiveTime processed) {
  const float* const source = volume_samples();
  if (!source) return false;
  collect_secondary();
  if (!delivery_.maxima || delivery_.maxima->extent() != kept_)
    delivery_.maxima = std::make_unique<BrickMaxima>(kept_, live_brick_side, BrickTexture::border);
  delivery_.processed = processed;
  Loan loan(feed, claim);
  if (!loan.data()) return true;
  for (std::int64_t k = 0; k < kept_.b_scans; ++k) {
    delivery_.maxima->take_b_scan(k, {source + k * acquired_.a_scans * acquired_.depth, acquired_.depth,
                                      loan.data() + k * kept_.a_scans * kept_.depth});
  }
  loan.filled(delivery_);
  return true;
}

// Null when the device gives no samples, which it has reported.
const float* Measurement::volume_samples() const {
  const DataHandle data = sequence_->volume();
  if (kept_ == acquired_) {
    const int bytes = sdk_.getDataPropertyInt(data, OCT_DATA_BYTE_COUNT);
    const float* const source = sdk_.getDataPtr(data);
    if (bytes == 0 || !source) return nullptr;
    const std::size_t wanted = sample_count(kept_.depth, kept_) * sizeof(float);
    if (bytes < 0 || static_cast<std::size_t>(bytes) != wanted) throw insufficient();
    return source;
  }
  // A-scans lie as far apart as at the start of the measurement.
  if (sdk_.getDataPropertyInt(data, OCT_DATA_SIZE_1) < std::max(kept_.depth, acquired_.depth) ||
      acquired_.depth < kept_.depth || sdk_.getDataPropertyInt(data, OCT_DATA_SIZE_2) < kept_.a_scans ||
      sdk_.getDataPropertyInt(data, OCT_DATA_SIZE_3) < kept_.b_scans) {
    throw insufficient();
  }
  return sdk_.getDataPtr(data);
}

std::optional<MeasuredSamples> Measurement::samples(LiveTime processed) {
  if (!sequence_->has_volume(acquired_.depth)) return std::nullopt;
  const float* const source = volume_samples();
  if (!source) return std::nullopt;
  return MeasuredSamples{kept_ == acquired_ ? source : cropped(source), kept_, volumes_ - 1, processed};
}

const float* Measurement::cropped(const float* source) {
  cropped_.clear();
  for (std::int64_t a_scan = 0; a_scan < kept_.a_scans * kept_.b_scans; ++a_scan) {
    const float* const first = source + a_scan * acquired_.depth;
    cropped_.insert(cropped_.end(), first, first + kept_.depth);
  }
  return cropped_.data();
}

// Copied, as the device writes the next ones while this volume waits to be drawn.
void Measurement::collect_secondary() {
  if (secondary_width_ == 0) return;
  const std::size_t count = sample_count(secondary_width_, kept_);
  const int bytes = sdk_.getDataPropertyInt(sequence_->analog(), OCT_DATA_BYTE_COUNT);
  if (bytes < 0 || static_cast<std::size_t>(bytes) < count * sizeof(float)) throw insufficient();
  delivery_.secondary.assign(analog_samples_, analog_samples_ + count);
}

void Measurement::hand_over_surface(LiveFeed& feed, LiveClaim claim) {
  const auto clear = [this](DataHandle data) { sdk_.clearData(data); };
  const DataHandle data = sequence_->volume();
  const std::unique_ptr<std::remove_pointer_t<DataHandle>, decltype(clear)> surface(sdk_.createData(), clear);
  if (!surface) return;
  sdk_.determineSurface(data, surface.get());
  const int width = sdk_.getDataPropertyInt(surface.get(), OCT_DATA_SIZE_1);
  const int height = sdk_.getDataPropertyInt(surface.get(), OCT_DATA_SIZE_2);
  const auto scale = static_cast<float>(sdk_.getDataPropertyFloat(data, OCT_DATA_RANGE_1));
  const float* depths = sdk_.getDataPtr(surface.get());
  if (!depths) return;
  if (kept_.depth != acquired_.depth) {
    depths_.assign(depths, depths + std::max(width, 0) * static_cast<std::ptrdiff_t>(std::max(height, 0)));
    crop_depths(scale);
    depths = depths_.data();
  }
  feed.with_renderer(claim,
                     [&](VolumeRenderer& renderer) { renderer.set_surface(width, height, scale, depths); });
}

// The device has spread the range of the kept samples over all of them. What lies below the kept ones is not
// there.
void Measurement::crop_depths(float scale) {
  const float ratio = static_cast<float>(acquired_.depth) / static_cast<float>(kept_.depth);
  for (float& depth : depths_) {
    depth *= ratio;
    if (depth > scale) depth = std::numeric_limits<float>::quiet_NaN();
  }
}

}  // namespace oct
