// Carries live volumes from an acquisition thread into a texture and has a volume renderer draw it.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "live/abstract_live_rendering.h"
#include "live/manual_reset_event.h"
#include "live/transition.h"
#include "live/volume_hand_over.h"
#include "live/volume_upload.h"

namespace oct {

// Two threads meet here: the acquisition thread fills buffers that lie in the driver's memory, and the
// rendering thread, which owns the context, does everything else in render.
class FastOpenGLVolumeRenderer : public AbstractLiveRendering {
 public:
  // Throws when the system gives no event.
  explicit FastOpenGLVolumeRenderer(std::unique_ptr<ManualResetEvent> event = ManualResetEvent::create());
  ~FastOpenGLVolumeRenderer() override;

  VolumeRenderer* get_renderer() override { return volume_renderer_; }
  void start() override;
  void render() override;
  void stop() override;
  void invalidate() override;
  // Throws std::invalid_argument for negative sizes and for more voxels than a 32-bit number counts.
  void set_size(std::int32_t x, std::int32_t y, std::int32_t z) override;
  void get_size(std::int32_t* x, std::int32_t* y, std::int32_t* z) override;
  void set_renderer(VolumeRenderer* renderer) override { volume_renderer_ = renderer; }
  void set_secondary_data(const float* data, std::int32_t width) override;
  bool is_running() override { return transition_.state() != LiveState::stopped; }
  float* get_data_ptr() override;
  void update() override;
  double get_fps() override { return fps_; }
  void wait_for_transition() override { transition_.wait(); }
  VolumeCounts get_counts() override { return {drawn_, dropped_}; }
  void discard() override { hand_over_.giveBack(); }

 private:
  virtual void initialize();
  virtual void close();

  gl::Extent3D extent() const;

  void renderStart(const Transition::Request& request);
  void renderStop(const Transition::Request& request);
  void renderRunning();
  void takeVolume();
  void lendBuffer();
  void draw();
  void forgetTextures();

  Transition transition_;
  VolumeHandOver hand_over_;
  VolumeUpload upload_;
  bool uploaded_ = false;  // since the texture was allocated
  mutable std::mutex extent_mutex_;
  gl::Extent3D extent_;  // of the volumes to come
  std::atomic<double> fps_ = 0.0;
  std::atomic<std::uint32_t> drawn_ = 0;
  std::atomic<std::uint32_t> dropped_ = 0;
  std::atomic<VolumeRenderer*> volume_renderer_ = nullptr;
};

}  // namespace oct
