#include "live/fast_opengl_volume_renderer.h"

#include <exception>
#include <utility>

#include "core/exception.h"
#include "core/log.h"
#include "gl/context/opengl_loader.h"
#include "gl/opengl_error.h"
#include "gl/trace/pass_mark.h"
#include "volume/volume_renderer.h"

namespace oct {

FastOpenGLVolumeRenderer::FastOpenGLVolumeRenderer() : feed_(std::make_shared<LiveFeed>()) {
  log() << "FastOpenGLVolumeRenderer: OpenGLVolumeRenderer constructor called. ";
}

FastOpenGLVolumeRenderer::~FastOpenGLVolumeRenderer() {
  log() << "~FastOpenGLVolumeRenderer";
  feed_->close();
}

void FastOpenGLVolumeRenderer::render() {
  const LiveFeed::Request request = feed_->observe();
  if (request.state == LiveState::stopped) return;
  gl::require_opengl();
  switch (request.state) {
    case LiveState::initialize:
    case LiveState::invalidated:
      return render_start(request);
    case LiveState::deinitialize_requested:
      return render_stop(request);
    case LiveState::running:
      return render_running(request);
    case LiveState::stopped:
      return;
  }
}

// The source that waits hears of a failure; it is the one that could ask for something else.
void FastOpenGLVolumeRenderer::render_start(const LiveFeed::Request& request) {
  try {
    close();
    initialize(request);
    gl::throwOnGLError("FastOpenGLVolumeRenderer::render, Invalidated || Initialize");
  } catch (const std::exception& error) {
    feed_->fail_start(request, error.what());
    throw;
  }
  feed_->complete_start(request);
}

void FastOpenGLVolumeRenderer::render_stop(const LiveFeed::Request& request) {
  log() << "De-Initializing!";
  close();
  feed_->complete_stop(request);
  gl::throwOnGLError("FastOpenGLVolumeRenderer::render, Deinitialize");
}

void FastOpenGLVolumeRenderer::render_running(const LiveFeed::Request& request) {
  gl::require_home(home_);
  const gl::PassMark mark("render live volume");
  log() << "Rendering: ";
  const bool volume = feed_->collect(delivery_) && take_back_volume();
  if (volume) record_timing_wait("volume waits for a frame", delivery_.processed);
  // The source fills the other buffer while the driver reads this one.
  std::exception_ptr failure;
  try {
    if (!feed_->is_mapped() && upload_.is_free()) lend_buffer(request.claim);
  } catch (...) {
    failure = std::current_exception();  // the volume is uploaded all the same
  }
  if (volume) upload_volume();
  if (failure) std::rethrow_exception(failure);
  draw();
  if (unshown_) feed_->count_shown(*std::exchange(unshown_, std::nullopt));
  const LiveFeed::Request meanwhile = feed_->observe();
  if (meanwhile.state == LiveState::deinitialize_requested) {
    close();
    feed_->complete_stop(meanwhile);
  }
  gl::throwOnGLError("FastOpenGLVolumeRenderer::render");
}

bool FastOpenGLVolumeRenderer::take_back_volume() {
  log() << "FastOpenGLVolumeRenderer::render(): Updating data...  ";
  log() << "FastOpenGLVolumeRenderer::render(): ptr invalidated. ";
  if (std::exchange(unshown_, std::nullopt)) feed_->count_lost_by_driver();  // each of its frames failed
  if (upload_.take_back()) return true;
  log() << "FastOpenGLVolumeRenderer::render(): the driver lost a volume. ";
  feed_->count_lost_by_driver();
  return false;
}

void FastOpenGLVolumeRenderer::upload_volume() {
  std::swap(maxima_, delivery_.maxima);
  try {
    upload_.upload("FastOpenGLVolumeRenderer::render, do_update");
    upload_.upload_secondary(delivery_.secondary, secondary_width_);
    uploaded_ = !upload_.extent().empty();
    unshown_ = delivery_.processed;
  } catch (...) {
    maxima_.reset();  // of what may be in the texture or not
    feed_->count_lost_by_driver();
    throw;
  }
  fps_ = measure_upload_rate();
  gl::throwOnGLError("FastOpenGLVolumeRenderer::render, do_update");
}

void FastOpenGLVolumeRenderer::lend_buffer(LiveClaim claim) {
  log() << "Invalid Ptr...";
  float* const data = upload_.map();
  if (!data) {
    log() << "Ptr is invalid. ";
    throw OpenGLError("This is an error.");
  }
  feed_->offer(claim, data);
  log() << "Set event succeeded. (render function) ";
  gl::throwOnGLError("FastOpenGLVolumeRenderer::render, other");
}

void FastOpenGLVolumeRenderer::draw() {
  VolumeRenderer* const renderer = feed_->renderer();
  if (renderer) renderer->render(source());
}

VolumeSource FastOpenGLVolumeRenderer::source() {
  VolumeSource source;
  if (upload_.secondary() != 0) {
    source.secondary = upload_.secondary();
    source.secondary_slice_count = secondary_width_;
    source.secondary_revisions = upload_.revisions();  // they come together
  }
  // Until the first volume has come the texture holds what the driver left in it.
  if (!uploaded_) {
    source.lack = VolumeLack::no_live_volume;
    return source;
  }
  source.volume = upload_.volume();
  source.extent = upload_.extent();
  source.volume_revisions = upload_.revisions();
  source.volume_maxima = maxima_.get();
  source.empty_space = &empty_space_;
  source.slice_count = static_cast<int>(upload_.extent().a_scans);
  return source;
}

void FastOpenGLVolumeRenderer::initialize(const LiveFeed::Request& request) {
  const VolumeExtent& extent = request.format.extent;
  upload_.allocate(extent);
  home_ = gl::current_identity();
  secondary_width_ = request.format.secondary_width;
  if (secondary_width_ > 0) upload_.allocate_secondary();
  log() << "Initializing with sizes: " << extent.depth << " x " << extent.a_scans << " x " << extent.b_scans;
  gl::throwOnGLError("FastOpenGLVolumeRenderer::initialize");
  if (float* const data = upload_.map()) feed_->offer(request.claim, data);
  gl::throwOnGLError("FastOpenGLVolumeRenderer::initialize");
}

void FastOpenGLVolumeRenderer::close() {
  const bool mapped = feed_->withdraw();
  log() << "FastOpenGLVolumeRenderer::close(): ResetEvent";
  if (mapped) upload_.unmap();
  log() << "Closing renderer. ";
  upload_.release();
  maxima_.reset();
  empty_space_.release();
  uploaded_ = false;
  if (std::exchange(unshown_, std::nullopt)) feed_->count_lost_by_driver();
  gl::throwOnGLError("FastOpenGLVolumeRenderer::close");
}

}  // namespace oct
