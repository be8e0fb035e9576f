#include "live/fast_opengl_volume_renderer.h"

#include <limits>
#include <stdexcept>

#include "core/console.h"
#include "core/exception.h"
#include "core/log.h"
#include "gl/context/opengl_loader.h"
#include "gl/opengl_error.h"
#include "live/upload_rate.h"
#include "volume/volume_renderer.h"

namespace oct {
namespace {

std::unique_ptr<ManualResetEvent> required(std::unique_ptr<ManualResetEvent> event) {
  log() << "FastOpenGLVolumeRenderer: OpenGLVolumeRenderer constructor called. ";
  if (!event) {
    log() << "Could not create event.";
    throw Exception("Could not create event.");
  }
  return event;
}

}  // namespace

FastOpenGLVolumeRenderer::FastOpenGLVolumeRenderer(std::unique_ptr<ManualResetEvent> event)
    : hand_over_(required(std::move(event))) {}

FastOpenGLVolumeRenderer::~FastOpenGLVolumeRenderer() {
  log() << "~FastOpenGLVolumeRenderer";
}

void FastOpenGLVolumeRenderer::set_size(const VolumeExtent& extent) {
  const auto [depth, a_scans, b_scans] = extent;
  if (depth < 0 || a_scans < 0 || b_scans < 0) {
    throw std::invalid_argument("Volume sizes must not be negative. ");
  }
  constexpr std::int64_t limit = std::numeric_limits<std::int32_t>::max();
  if (depth * a_scans > limit || depth * a_scans * b_scans > limit) {
    throw std::invalid_argument("The volume has too many voxels for live rendering. ");
  }
  {
    const std::lock_guard lock(extent_mutex_);
    extent_ = extent;
  }
  log() << "FastOpenGLVolumeRenderer::set_size: " << depth << " x " << a_scans << " x " << b_scans;
}

VolumeExtent FastOpenGLVolumeRenderer::get_size() const {
  const std::lock_guard lock(extent_mutex_);
  return extent_;
}

void FastOpenGLVolumeRenderer::set_secondary_data(const float* data, std::int32_t width) {
  hand_over_.set_secondary(data, width);
}

void FastOpenGLVolumeRenderer::start() {
  log() << "Start called";
  transition_.request(LiveState::initialize);
}

void FastOpenGLVolumeRenderer::invalidate() {
  log() << "Invalidate called, size_z = " << get_size().b_scans;
  transition_.request(LiveState::invalidated);
}

void FastOpenGLVolumeRenderer::stop() {
  log() << "Stop called";
  transition_.request_stop();
}

float* FastOpenGLVolumeRenderer::get_data_ptr() {
  if (!hand_over_.wait_for_buffer()) {
    log() << "FastOpenGLVolumeRenderer::get_data_ptr(): WAIT_TIMEOUT on ptr_event";
    ++dropped_;
    return nullptr;
  }
  float* const data = hand_over_.lend(get_size());
  if (!data) ++dropped_;
  log() << "FastOpenGLVolumeRenderer::get_data_ptr(): ResetEvent";
  return data;
}

void FastOpenGLVolumeRenderer::update() {
  log() << "FastOpenGLVolumeRenderer::update()";
  hand_over_.fill();
}

void FastOpenGLVolumeRenderer::render() {
  const Transition::Request request = transition_.observe();
  if (request.state == LiveState::stopped) return;
  gl::require_opengl();
  switch (request.state) {
    case LiveState::initialize:
    case LiveState::invalidated:
      return render_start(request);
    case LiveState::deinitialize_requested:
      return render_stop(request);
    case LiveState::running:
      return render_running();
    case LiveState::stopped:
      return;
  }
}

void FastOpenGLVolumeRenderer::render_start(const Transition::Request& request) {
  close();
  initialize();
  gl::throwOnGLError("FastOpenGLVolumeRenderer::render, Invalidated || Initialize");
  transition_.complete_start(request);
}

void FastOpenGLVolumeRenderer::render_stop(const Transition::Request& request) {
  log() << "De-Initializing!";
  close();
  transition_.complete_stop(request);
  gl::throwOnGLError("FastOpenGLVolumeRenderer::render, Deinitialize");
}

void FastOpenGLVolumeRenderer::render_running() {
  gl::require_home(home_);
  log() << "Rendering: ";
  if (hand_over_.filled()) {
    take_volume();
  } else if (!hand_over_.mapped()) {
    lend_buffer();
  }
  draw();
  const Transition::Request meanwhile = transition_.observe();
  if (meanwhile.state == LiveState::deinitialize_requested) {
    close();
    transition_.complete_stop(meanwhile);
  }
  gl::throwOnGLError("FastOpenGLVolumeRenderer::render");
}

// The buffer whose turn comes now is mapped in the next frame, after the driver had time to read this one.
void FastOpenGLVolumeRenderer::take_volume() {
  log() << "FastOpenGLVolumeRenderer::render(): Updating data...  ";
  log() << "FastOpenGLVolumeRenderer::render(): ptr invalidated. ";
  if (upload_.upload()) {
    uploaded_ = !upload_.extent().empty();
    upload_.upload_secondary(hand_over_.secondary());
    ++drawn_;
  } else {
    log() << "FastOpenGLVolumeRenderer::render(): the driver lost a volume. ";
    ++dropped_;
  }
  fps_ = measure_upload_rate();
  hand_over_.taken();
  gl::throwOnGLError("FastOpenGLVolumeRenderer::render, do_update");
}

void FastOpenGLVolumeRenderer::lend_buffer() {
  log() << "Invalid Ptr...";
  float* const data = upload_.map();
  if (!data) {
    log() << "Ptr is invalid. ";
    throw Exception("This is an error.");
  }
  if (!hand_over_.offer(data)) {
    log() << "Could not set event. ";
    throw Exception("This is an error.");
  }
  log() << "Set event succeeded. (render function) ";
  gl::throwOnGLError("FastOpenGLVolumeRenderer::render, other");
}

void FastOpenGLVolumeRenderer::draw() {
  VolumeRenderer* const renderer = volume_renderer_;
  if (renderer) renderer->render(source());
}

VolumeSource FastOpenGLVolumeRenderer::source() const {
  VolumeSource source;
  if (upload_.secondary() != 0) {
    source.secondary = upload_.secondary();
    source.secondary_slice_count = secondary_width_;
  }
  // Until the first volume has come the texture holds what the driver left in it.
  if (!uploaded_) return source;
  source.volume = upload_.volume();
  source.volume_revisions = &upload_.revisions();
  source.slice_count = static_cast<int>(upload_.extent().a_scans);
  return source;
}

void FastOpenGLVolumeRenderer::initialize() {
  const VolumeExtent stored = get_size();
  upload_.allocate(stored);
  home_ = gl::current_identity();
  hand_over_.set_extent(stored);
  secondary_width_ = hand_over_.secondary_width();
  if (secondary_width_ > 0) upload_.allocate_secondary();
  log() << "Initializing with sizes: " << stored.depth << " x " << stored.a_scans << " x " << stored.b_scans;
  float* const data = upload_.map_fresh();
  if (!hand_over_.offer(data)) {
    write_error("Could not set event.");
    log() << "FastOpenGLVolumeRenderer::initialize(): SetEvent failed. ";
    throw Exception("Could not set event");
  }
  gl::throwOnGLError("FastOpenGLVolumeRenderer::initialize");
}

void FastOpenGLVolumeRenderer::close() {
  const bool mapped = hand_over_.withdraw();
  log() << "FastOpenGLVolumeRenderer::close(): ResetEvent";
  if (mapped) upload_.unmap();
  log() << "Closing renderer. ";
  upload_.release();
  uploaded_ = false;
  gl::throwOnGLError("FastOpenGLVolumeRenderer::close");
}

}  // namespace oct
