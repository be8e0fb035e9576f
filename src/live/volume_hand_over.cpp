#include "live/volume_hand_over.h"

#include <algorithm>
#include <utility>

namespace oct {
namespace {

// A producer that waited longer would lose touch with its device.
constexpr std::chrono::milliseconds patience{100};

}  // namespace

bool VolumeHandOver::wait_for_buffer() {
  return event_->wait(patience);
}

float* VolumeHandOver::lend(const VolumeExtent& wanted) {
  const std::lock_guard lock(mutex_);
  if (data_ && extent_ != wanted) return nullptr;
  event_->reset();
  if (!data_ || lent_ || filled_ || withdrawing_) return nullptr;
  lent_ = true;
  return data_;
}

void VolumeHandOver::give_back() {
  {
    const std::lock_guard lock(mutex_);
    if (!lent_) return;
    lent_ = false;
    event_->set();
  }
  returned_.notify_all();
}

void VolumeHandOver::fill() {
  const float* data = nullptr;
  std::size_t count = 0;
  {
    const std::lock_guard lock(mutex_);
    if (!lent_) return;
    data = secondary_data_;
    filled_secondary_.width = data ? secondary_width_ : 0;
    const std::int64_t a_scans = extent_.a_scans * extent_.b_scans;
    count = static_cast<std::size_t>(filled_secondary_.width * a_scans);
  }
  filled_secondary_.values.assign(data, data + count);
  {
    const std::lock_guard lock(mutex_);
    lent_ = false;
    filled_ = true;
  }
  returned_.notify_all();
}

void VolumeHandOver::set_secondary(const float* data, std::int32_t width) {
  const std::lock_guard lock(mutex_);
  secondary_data_ = data;
  secondary_width_ = data ? std::max(width, 0) : 0;
}

bool VolumeHandOver::offer(float* data) {
  const std::lock_guard lock(mutex_);
  data_ = data;
  return event_->set();
}

bool VolumeHandOver::mapped() const {
  const std::lock_guard lock(mutex_);
  return data_ != nullptr;
}

bool VolumeHandOver::filled() const {
  const std::lock_guard lock(mutex_);
  return filled_;
}

void VolumeHandOver::taken() {
  const std::lock_guard lock(mutex_);
  filled_ = false;
  data_ = nullptr;
}

bool VolumeHandOver::withdraw() {
  std::unique_lock lock(mutex_);
  event_->reset();
  withdrawing_ = true;  // who gives the buffer back does not get it again
  returned_.wait(lock, [this] { return !lent_; });
  withdrawing_ = false;
  event_->reset();  // the producer may have given the buffer back
  filled_ = false;
  return std::exchange(data_, nullptr) != nullptr;
}

void VolumeHandOver::set_extent(const VolumeExtent& extent) {
  const std::lock_guard lock(mutex_);
  extent_ = extent;
}

std::int32_t VolumeHandOver::secondary_width() const {
  const std::lock_guard lock(mutex_);
  return secondary_width_;
}

}  // namespace oct
