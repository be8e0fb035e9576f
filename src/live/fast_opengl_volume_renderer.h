// Carries live volumes from an acquisition thread into a texture and has a volume renderer draw it.
#pragma once

#include <atomic>
#include <memory>
#include <optional>

#include "gl/context/context_identity.h"
#include "live/live_feed.h"
#include "live/volume_upload.h"
#include "volume/skipping/empty_space.h"

namespace oct {

class VolumeRenderer;
struct VolumeSource;

// The rendering thread's side of a LiveFeed: sources fill buffers that lie in the driver's memory, and the
// rendering thread, which owns the context, does everything else in render, once per frame.
class FastOpenGLVolumeRenderer {
 public:
  FastOpenGLVolumeRenderer();
  // Lets go of its sources, which go on without it; waits for a copy that is under way.
  ~FastOpenGLVolumeRenderer();
  FastOpenGLVolumeRenderer(const FastOpenGLVolumeRenderer&) = delete;
  FastOpenGLVolumeRenderer& operator=(const FastOpenGLVolumeRenderer&) = delete;

  const std::shared_ptr<LiveFeed>& feed() const { return feed_; }

  void set_renderer(VolumeRenderer* renderer) { feed_->set_renderer(renderer); }  // not owned; null: none
  bool is_running() const { return feed_->state() != LiveState::stopped; }
  void render();
  VolumeSource source();                   // what the next frame draws; of the rendering thread
  double get_fps() const { return fps_; }  // volumes per second

 private:
  void initialize(const LiveFeed::Request& request);
  void close();

  void render_start(const LiveFeed::Request& request);
  void render_stop(const LiveFeed::Request& request);
  void render_running(const LiveFeed::Request& request);
  bool take_back_volume();
  void upload_volume();
  void lend_buffer(LiveClaim claim);
  void draw();

  const std::shared_ptr<LiveFeed> feed_;
  VolumeUpload upload_;
  gl::ContextIdentity home_ = gl::no_context;  // where the textures and buffers are
  std::int32_t secondary_width_ = 0;
  bool uploaded_ = false;                // since the texture was allocated
  LiveDelivery delivery_;                // of the volume that is being uploaded
  std::unique_ptr<BrickMaxima> maxima_;  // of the volume in the texture; null: unknown
  EmptySpace empty_space_;
  std::optional<LiveTime> unshown_;  // when the volume was processed that no frame has shown yet
  std::atomic<double> fps_ = 0.0;
};

}  // namespace oct
