// What carries live volumes from an acquisition thread to the screen.
#pragma once

#include <cstdint>

namespace oct {

class VolumeRenderer;

// A producer calls set_size, set_secondary_data if it has any, start, invalidate and wait_for_transition;
// then, for each volume, get_data_ptr and update; stop at the end. The rendering thread calls render once per
// frame.
class AbstractLiveRendering {
 public:
  virtual ~AbstractLiveRendering() = default;

  virtual VolumeRenderer* get_renderer() = 0;  // not owned; null when none is set
  virtual void start() = 0;                    // requests initialisation
  virtual void render() = 0;                   // rendering thread only
  virtual void stop() = 0;        // requests de-initialisation; nobody waits for a transition any more
  virtual void invalidate() = 0;  // requests initialisation anew, for other sizes
  virtual void set_size(std::int32_t x, std::int32_t y, std::int32_t z) = 0;  // in voxels, x is depth
  virtual void get_size(std::int32_t* x, std::int32_t* y, std::int32_t* z) = 0;
  virtual void set_renderer(VolumeRenderer* renderer) = 0;
  // One x-y-z block of `width` values for every A-scan, read by update. Null: there is none.
  virtual void set_secondary_data(const float* data, std::int32_t width) = 0;
  virtual bool is_running() = 0;
  virtual float* get_data_ptr() = 0;  // the buffer for the next volume; null if none is free within 100 ms
  virtual void update() = 0;          // the buffer is filled
  virtual double get_fps() = 0;       // volumes per second
  virtual void wait_for_transition() = 0;

  // Volumes since construction. Any thread, never waits.
  struct VolumeCounts {
    std::uint32_t drawn = 0;    // taken to the graphics card
    std::uint32_t dropped = 0;  // no buffer in time, or lost by the driver
  };
  virtual VolumeCounts get_counts() { return {}; }

  // Instead of update: the buffer goes back without a volume, because filling it failed.
  virtual void discard() = 0;
};

}  // namespace oct
