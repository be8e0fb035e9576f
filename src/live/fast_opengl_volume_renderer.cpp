#include "live/fast_opengl_volume_renderer.h"

#include <limits>
#include <stdexcept>

#include "core/console.h"
#include "core/exception.h"
#include "core/log.h"
#include "core/object_lock.h"
#include "gl/opengl_error.h"
#include "gl/context/opengl_loader.h"
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
  hand_over_.setSecondary(data, width);
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
  transition_.requestStop();
}

float* FastOpenGLVolumeRenderer::get_data_ptr() {
  if (!hand_over_.waitForBuffer()) {
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
  gl::requireOpenGL();
  switch (request.state) {
    case LiveState::initialize:
    case LiveState::invalidated:
      return renderStart(request);
    case LiveState::deinitializeRequested:
      return renderStop(request);
    case LiveState::running:
      return renderRunning();
    case LiveState::stopped:
      return;
  }
}

void FastOpenGLVolumeRenderer::renderStart(const Transition::Request& request) {
  close();
  initialize();
  gl::throwOnGLError("FastOpenGLVolumeRenderer::render, Invalidated || Initialize");
  transition_.completeStart(request);
}

void FastOpenGLVolumeRenderer::renderStop(const Transition::Request& request) {
  log() << "De-Initializing!";
  close();
  transition_.completeStop(request);
  gl::throwOnGLError("FastOpenGLVolumeRenderer::render, Deinitialize");
}

void FastOpenGLVolumeRenderer::renderRunning() {
  log() << "Rendering: ";
  if (hand_over_.filled()) {
    takeVolume();
  } else if (!hand_over_.mapped()) {
    lendBuffer();
  }
  draw();
  const Transition::Request meanwhile = transition_.observe();
  if (meanwhile.state == LiveState::deinitializeRequested) {
    close();
    transition_.completeStop(meanwhile);
  }
  gl::throwOnGLError("FastOpenGLVolumeRenderer::render");
}

// The buffer whose turn comes now is mapped in the next frame, after the driver had time to read this one.
void FastOpenGLVolumeRenderer::takeVolume() {
  log() << "FastOpenGLVolumeRenderer::render(): Updating data...  ";
  log() << "FastOpenGLVolumeRenderer::render(): ptr invalidated. ";
  if (upload_.upload()) {
    uploaded_ = !upload_.extent().empty();
    upload_.uploadSecondary(hand_over_.secondary());
    ++drawn_;
  } else {
    log() << "FastOpenGLVolumeRenderer::render(): the driver lost a volume. ";
    ++dropped_;
  }
  fps_ = measureUploadRate();
  hand_over_.taken();
  gl::throwOnGLError("FastOpenGLVolumeRenderer::render, do_update");
}

void FastOpenGLVolumeRenderer::lendBuffer() {
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
  if (!renderer) return;
  const ObjectLock lock(renderer);  // no setter comes between the hand-over and the frame
  VolumeSource source = renderer->source();
  // Until the first volume has come the texture holds what the driver left in it.
  source.volume = uploaded_ ? upload_.volume() : 0;
  source.sliceCount = static_cast<int>(upload_.extent().a_scans);
  source.filledFraction = 1.0F;
  if (!hand_over_.mapped()) ++source.revision;  // the texture was just replaced
  renderer->setSource(source);
  renderer->render();
}

void FastOpenGLVolumeRenderer::initialize() {
  const VolumeExtent stored = get_size();
  if (VolumeRenderer* const renderer = volume_renderer_) {
    const ObjectLock lock(renderer);
    VolumeSource source = renderer->source();
    source.filledFraction = 1.0F;
    renderer->setSource(source);
  }
  upload_.allocate(stored);
  hand_over_.setExtent(stored);
  if (const std::int32_t width = hand_over_.secondaryWidth(); width > 0) {
    upload_.allocateSecondary();
    if (VolumeRenderer* const renderer = volume_renderer_) {
      const ObjectLock lock(renderer);
      VolumeSource source = renderer->source();
      source.secondary = upload_.secondary();
      source.secondarySliceCount = width;
      renderer->setSource(source);
    }
  }
  log() << "Initializing with sizes: " << stored.depth << " x " << stored.a_scans << " x " << stored.b_scans;
  float* const data = upload_.mapFresh();
  if (!hand_over_.offer(data)) {
    writeError("Could not set event.");
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
  forgetTextures();
  upload_.release();
  uploaded_ = false;
  gl::throwOnGLError("FastOpenGLVolumeRenderer::close");
}

// The volume renderer may draw something else next, and OpenGL may give the names to somebody else.
void FastOpenGLVolumeRenderer::forgetTextures() {
  VolumeRenderer* const renderer = volume_renderer_;
  if (!renderer) return;
  const ObjectLock lock(renderer);
  VolumeSource source = renderer->source();
  if (source.volume == upload_.volume()) source.volume = 0;
  if (source.secondary == upload_.secondary()) {
    source.secondary = 0;
    source.secondarySliceCount = 0;
  }
  renderer->setSource(source);
}

}  // namespace oct
