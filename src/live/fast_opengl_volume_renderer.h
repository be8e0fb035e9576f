// Carries live volumes from an acquisition thread into a texture and has a volume renderer draw it.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "gl/context/context_identity.h"
#include "live/manual_reset_event.h"
#include "live/transition.h"
#include "live/volume_hand_over.h"
#include "live/volume_upload.h"

namespace oct {

class VolumeRenderer;
struct VolumeSource;

// Two threads meet here: the acquisition thread fills buffers that lie in the driver's memory, and the
// rendering thread, which owns the context, does everything else in render, once per frame.
//
// A producer calls set_size, set_secondary_data if it has any, start, invalidate and wait_for_transition;
// then, for each volume, get_data_ptr and update; stop at the end.
class FastOpenGLVolumeRenderer {
 public:
  // Throws when the system gives no event.
  explicit FastOpenGLVolumeRenderer(std::unique_ptr<ManualResetEvent> event = ManualResetEvent::create());
  ~FastOpenGLVolumeRenderer();
  FastOpenGLVolumeRenderer(const FastOpenGLVolumeRenderer&) = delete;
  FastOpenGLVolumeRenderer& operator=(const FastOpenGLVolumeRenderer&) = delete;

  VolumeRenderer* get_renderer() { return volume_renderer_; }  // not owned; null when none is set
  void set_renderer(VolumeRenderer* renderer) { volume_renderer_ = renderer; }
  void start();       // requests initialisation
  void invalidate();  // requests initialisation anew, for other sizes
  void stop();        // requests de-initialisation; nobody waits for a transition any more
  void wait_for_transition() { transition_.wait(); }
  bool is_running() { return transition_.state() != LiveState::stopped; }
  void render();

  // Throws std::invalid_argument for negative sizes and for more voxels than a 32-bit number counts.
  void set_size(const VolumeExtent& extent);
  VolumeExtent get_size() const;

  // `width` values for every A-scan, read by update. Null: there is none.
  void set_secondary_data(const float* data, std::int32_t width);

  float* get_data_ptr();  // the buffer for the next volume; null if none is free within 100 ms
  void update();          // the buffer is filled
  void discard() { hand_over_.give_back(); }  // it goes back without a volume, because filling it failed

  // Volumes since construction. Any thread, never waits.
  struct VolumeCounts {
    std::uint32_t drawn = 0;    // taken to the graphics card
    std::uint32_t dropped = 0;  // no buffer in time, or lost by the driver
  };
  VolumeCounts get_counts() { return {drawn_, dropped_}; }
  VolumeSource source() const;  // what the next frame draws; of the rendering thread
  double get_fps() { return fps_; }  // volumes per second

 private:
  void initialize();
  void close();

  void render_start(const Transition::Request& request);
  void render_stop(const Transition::Request& request);
  void render_running();
  void take_volume();
  void lend_buffer();
  void draw();

  Transition transition_;
  VolumeHandOver hand_over_;
  VolumeUpload upload_;
  gl::ContextIdentity home_ = gl::no_context;  // where the textures and buffers are
  bool uploaded_ = false;                      // since the texture was allocated
  std::int32_t secondary_width_ = 0;           // of the secondary texture
  mutable std::mutex extent_mutex_;
  VolumeExtent extent_;  // of the volumes to come
  std::atomic<double> fps_ = 0.0;
  std::atomic<std::uint32_t> drawn_ = 0;
  std::atomic<std::uint32_t> dropped_ = 0;
  std::atomic<VolumeRenderer*> volume_renderer_ = nullptr;
};

}  // namespace oct
