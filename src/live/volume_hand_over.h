// One mapped buffer that goes to and fro between the rendering thread and the acquisition thread.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "core/extent.h"
#include "live/manual_reset_event.h"

namespace oct {

// At any moment the buffer is unmapped, free, lent to the producer, or filled. The lock is held for a few
// instructions only, never across OpenGL.
class VolumeHandOver {
 public:
  // Takes the event over, which must not be null.
  explicit VolumeHandOver(std::unique_ptr<ManualResetEvent> event) : event_(std::move(event)) {}

  // For the acquisition thread.

  bool wait_for_buffer();  // at most 100 ms
  // Free becomes lent. Null when the rendering thread took the buffer back meanwhile, and when its extent is
  // not the wanted one: then the initialisation for the new one is still to come.
  float* lend(const VolumeExtent& wanted);
  void give_back();  // lent becomes free

  // Lent becomes filled. The secondary values of the volume are copied: their owner writes the next ones
  // while this volume waits to be drawn.
  void fill();

  // `width` values for each A-scan; null: there are none.
  void set_secondary(const float* data, std::int32_t width);

  // For the rendering thread.

  bool offer(float* data);  // a mapped buffer becomes free; false when the system refuses
  bool mapped() const;
  bool filled() const;
  void taken();  // the filled buffer was unmapped

  // Takes the buffer back, after the producer has finished with it. Returns whether it was
  // mapped; what it holds is lost.
  bool withdraw();

  void set_extent(const VolumeExtent& extent);  // of the buffer; while it is unmapped
  std::int32_t secondary_width() const;

  struct Secondary {
    std::vector<float> values;  // none: the volume came without
    std::int32_t width = 0;
  };
  // Of the filled volume, valid until taken().
  const Secondary& secondary() const { return filled_secondary_; }

 private:
  const std::unique_ptr<ManualResetEvent> event_;
  mutable std::mutex mutex_;
  std::condition_variable returned_;
  float* data_ = nullptr;
  bool lent_ = false;
  bool filled_ = false;
  bool withdrawing_ = false;
  VolumeExtent extent_;
  const float* secondary_data_ = nullptr;
  std::int32_t secondary_width_ = 0;
  Secondary filled_secondary_;  // the producer's while the buffer is lent, else the rendering thread's
};

}  // namespace oct
