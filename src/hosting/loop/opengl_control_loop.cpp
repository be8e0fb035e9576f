#include "hosting/loop/opengl_control_loop.h"

#include <chrono>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "core/console.h"
#include "core/log.h"
#include "core/timing_mark.h"
#include "hosting/host/opengl_host.h"
#include "hosting/loop/opengl_control.h"
#include "hosting/loop/render_trace.h"
#include "hosting/surfaces/client_surfaces.h"

namespace oct {
namespace {

constexpr std::uint32_t gate_value = 0xFFFFFFFFU;
constexpr const char* thread_ended = "The rendering thread of the control loop has ended. ";

std::int64_t nanoseconds_now() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
}

// Counts the iterations of all loops and marks the time that 50 of them took, from the first on.
class IterationClock {
 public:
  explicit IterationClock(const char* mark_name) : mark_name_(mark_name) {}

  void start() { reference_ = nanoseconds_now(); }
  void tick() {
    if (iterations_++ % 50 != 0) return;
    const std::int64_t now = nanoseconds_now();
    record_timing_mark(mark_name_ + std::to_string((now - reference_.exchange(now)) / 1'000'000) + " ms");
  }

 private:
  const char* const mark_name_;
  std::atomic<std::uint64_t> iterations_{0};
  std::atomic<std::int64_t> reference_{0};  // nanoseconds
};

IterationClock render_clock("50 iterations of rendering loops: ");
IterationClock return_clock("50 iterations of return loops: ");

class Visit {
 public:
  explicit Visit(Visitors& visitors) : visitors_(visitors) {
    if (!visitors_.enter()) throw std::runtime_error(thread_ended);
  }
  ~Visit() { visitors_.leave(); }
  Visit(const Visit&) = delete;
  Visit& operator=(const Visit&) = delete;

 private:
  Visitors& visitors_;
};

}  // namespace

OpenGLControlLoop::OpenGLControlLoop(Callback initCallback, Callback uninitCallback,
                                     ErrorCallback errorCallback)
    : error_callback_(std::move(errorCallback)),
      init_callback_(std::move(initCallback)),
      uninit_callback_(std::move(uninitCallback)),
      sharing_(surface_sharing()) {
  const TimingMark mark("OpenGLControlLoop");
  render_thread_ = std::thread([this] { rendering_loop(); });
  start_gate_.wait([] {});
}

OpenGLControlLoop::~OpenGLControlLoop() {
  try {
    shut_down();
  } catch (const std::exception& error) {
    write_error(error.what());
  }
}

void OpenGLControlLoop::check_deletable() const {
  const auto self = std::this_thread::get_id();
  if (self == render_thread_id_.load() || self == return_thread_id_.load()) {
    throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
  }
}

void OpenGLControlLoop::request(std::int32_t id) {
  request_queue_.add(id);
}

void OpenGLControlLoop::set_mode(Mode mode) {
  if (mode == mode_) return;
  const std::lock_guard lock(mode_mutex_);
  if (mode_ == snapshot_mode) {
    pending_mode_ = mode;
  } else {
    mode_.exchange(mode);
  }
}

void OpenGLControlLoop::resize(std::uint32_t width, std::uint32_t height) {
  size_ = static_cast<std::uint64_t>(width) << 32 | height;
}

OpenGLControlLoop::Size OpenGLControlLoop::size() const {
  const std::uint64_t both = size_;
  return {static_cast<std::uint32_t>(both >> 32), static_cast<std::uint32_t>(both)};
}

void OpenGLControlLoop::set_rendering_callback(RenderingCallback callback) {
  const std::lock_guard lock(rendering_callback_mutex_);
  rendering_callback_.swap(callback);
}

void OpenGLControlLoop::set_image_ready_callback(std::optional<ImageReadyCallback> callback) {
  const std::lock_guard lock(image_ready_mutex_);
  image_ready_callback_.swap(callback);
}

void OpenGLControlLoop::snapshot(std::uint32_t width, std::uint32_t height, void* data) {
  const TimingMark mark("OpenGLControlLoop::snap");
  if (std::this_thread::get_id() == render_thread_id_.load()) {
    throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
  }
  if (mode_ == snapshot_mode) return;
  const Visit visit(snapshots_);
  {
    const std::scoped_lock lock(snapshot_mutex_, mode_mutex_);
    if (mode_ == snapshot_mode) return;  // another client was quicker
    pending_mode_ = mode_.exchange(snapshot_mode);
  }
  control_->snapshot(width, height, data);
  trace_render_call(0);
  request(0);
  return_map_.wake();  // a render thread that waits for the client draws the snapshot first
  const bool drawn = control_->wait_for_snapshot();
  {
    const std::scoped_lock lock(snapshot_mutex_, mode_mutex_);
    mode_.exchange(pending_mode_);
  }
  if (!drawn) throw std::runtime_error(thread_ended);
}

void OpenGLControlLoop::rendering_loop() noexcept {
  render_thread_id_ = std::this_thread::get_id();
  try {
    try {
      render();
    } catch (const std::exception& error) {
      log() << "Rendering loop: " << error.what();
      // Without its device whatever is tried fails, each in a way of its own.
      const std::string reason =
          control_ && control_->device().removed() ? graphics_device_removed : error.what();
      render_thread_failed();
      if (error_callback_) error_callback_(reason);
    } catch (...) {
      log() << "Rendering loop, unknown error.";
      render_thread_failed();
    }
  } catch (...) {
    write_error("Unexpected error in rendering_loop().");
  }
}

// Nobody may wait for a frame any more. The loop stays as it is until it is deleted.
void OpenGLControlLoop::render_thread_failed() {
  if (control_) {
    end_snapshots();
    control_->make_uncurrent();
  } else {
    snapshots_.close();
  }
  start_gate_.signal(gate_value);
}

void OpenGLControlLoop::end_snapshots() {
  snapshots_.close();
  // A snapshot that has entered but not begun yet must be let go as well.
  while (!snapshots_.empty()) {
    control_->cancel_snapshot();
    std::this_thread::yield();
  }
}

void OpenGLControlLoop::render() {
  const TimingMark mark("Rendering Loop");
  control_ = std::make_unique<OpenGLControl>(sharing_);
  return_thread_ = std::thread([this] { return_loop(); });
  start_gate_.signal(gate_value);
  if (init_callback_) init_callback_();
  render_clock.start();
  while (running_) render_iteration();

  return_map_.insert(0, nullptr);
  if (return_thread_.joinable()) {
    return_thread_.join();
  } else {
    write_error("Background return thread not joinable. ");
  }
  end_snapshots();
  if (uninit_callback_) {
    const TimingMark uninit_mark("Uninit of specific OpenGL control");
    uninit_callback_();
  }
  std::unique_ptr<OpenGLControl> control = std::move(control_);
  control.reset();
  log() << "Rendering loop finished. ";
}

void OpenGLControlLoop::render_iteration() {
  const TimingMark mark("rendering_loop_it_incl");
  // With nothing else to do there is time to wait for the GPU.
  hand_over(request_queue_.empty());
  if (mode_ != round_robin) request_queue_.wait();
  bool taken = false;
  const RequestQueue::Request request = next_request(taken);
  if (!request || *request == no_request) {
    std::this_thread::yield();
    return;
  }
  const Size current = size();
  if (current.width != 0 && current.height != 0) {
    render_frame(*request, taken);
  } else {
    std::this_thread::yield();
  }
  render_clock.tick();
}

// Never waits: the mode may have changed since the queue was seen to hold something, and who wants to change
// it again needs the mutex.
RequestQueue::Request OpenGLControlLoop::next_request(bool& taken) {
  const std::lock_guard lock(mode_mutex_);
  switch (mode_) {
    case once_each:
      taken = true;
      return request_queue_.take();
    case snapshot_mode:
      return request_queue_.front();
    default:
      return request_queue_.rotate();
  }
}

void OpenGLControlLoop::render_frame(std::int32_t request, bool taken) {
  const TimingMark mark("rendering_loop_it_excl");
  if (render_snapshot(request, taken)) return;
  HandOffBuffer& buffer = control_->current_buffer();
  // A frame that the client has not got yet is not drawn over: its buffer would arrive twice
  // with the later frame, and out of order. A snapshot does not wait for the client, who may be
  // asking for it in the very callback.
  if (&buffer == unfinished_) hand_over(true);
  return_map_.wait_until_returned(&buffer, [this] { return !running_ || control_->pending_snapshot(); });
  if (render_snapshot(request, taken)) return;

  auto lock = buffer.lock();
  const Size wanted = size();
  if (buffer.width() != wanted.width || buffer.height() != wanted.height) {
    buffer.resize(wanted.width, wanted.height);
  }
  {
    const TimingMark callback_mark("Rendering callback (", std::to_string(buffer.buffer_id()) + ")");
    buffer.prepare(request);
    draw(request);
    buffer.finish();
    control_->device().check();
  }
  control_->rotate_buffers();
  lock.unlock();
  // The frame before had the time of this one to be read back.
  hand_over(true);
  unfinished_ = &buffer;
  hand_over(false);
}

// Whether one was pending. It takes the place of a frame that was asked for once; that one follows.
bool OpenGLControlLoop::render_snapshot(std::int32_t request, bool taken) {
  OffscreenBufferObject* const snapshot = control_->pending_snapshot();
  if (!snapshot) return false;
  if (taken) request_queue_.put_back(request);
  const TimingMark callback_mark("Rendering callback (-1)");
  snapshot->prepare();
  draw(request);
  snapshot->finish();
  return true;
}

void OpenGLControlLoop::draw(std::int32_t request) {
  const std::lock_guard lock(rendering_callback_mutex_);
  if (!running_) return;
  if (rendering_callback_) {
    rendering_callback_(static_cast<std::uint32_t>(request));
  } else {
    const TimingMark mark("Test image callback");
    control_->render_test_image();
  }
}

// Gives the last frame to the return thread once the GPU is done with it.
void OpenGLControlLoop::hand_over(bool wait) {
  if (!unfinished_) return;
  const auto lock = unfinished_->lock();
  if (!unfinished_->complete(wait)) return;
  HandOffBuffer* const finished = std::exchange(unfinished_, nullptr);
  return_map_.insert(finished->order_key(), finished);
}

void OpenGLControlLoop::return_loop() {
  return_thread_id_ = std::this_thread::get_id();
  try {
    return_frames();
  } catch (...) {
    // Nobody can tell who holds the surface now; going on would hand out frames that are being drawn.
    write_error("Return thread crashed!!");
    record_timing_mark("Return thread crashed. ");
    throw;
  }
}

void OpenGLControlLoop::return_frames() {
  const TimingMark mark("Return loop");
  start_gate_.wait([] {});
  return_clock.start();
  while (running_) {
    const TimingMark iteration_mark("return_loop_it_incl");
    HandOffBuffer* const buffer = return_map_.take();
    const TimingMark work_mark("return_loop_it_excl");
    if (buffer) {
      give_to_client(*buffer);
      return_clock.tick();
    }
    return_map_.returned();
  }
}

void OpenGLControlLoop::give_to_client(HandOffBuffer& buffer) {
  auto mapped = buffer.map();
  const TimingMark mark("Return buffer callback (", std::to_string(buffer.buffer_id()) + ")");
  if (!mapped || !running_) return;
  {
    const std::lock_guard lock(image_ready_mutex_);
    if (image_ready_callback_) {
      const ClientSurfaces::Loan loan(client_surfaces(), sharing_, mapped->surface());
      (*image_ready_callback_)(mapped->index(), mapped->width(), mapped->height(), mapped->surface());
    }
  }
  mapped.reset();  // gives the buffer back
}

void OpenGLControlLoop::shut_down() {
  const TimingMark outer_mark("Destructing OpenGL Loop");
  const TimingMark inner_mark("~OpenGLControlLoop");
  // A running snapshot is let finish, even one that has only changed the mode yet; that of a loop without a
  // size would never come.
  const Size current = size();
  if (mode_ == snapshot_mode && current.width != 0 && current.height != 0) {
    snapshots_.close();
    snapshots_.drain();
  }
  running_ = false;
  {
    const std::lock_guard rendering_lock(rendering_callback_mutex_);
    const std::lock_guard image_ready_lock(image_ready_mutex_);
    rendering_callback_ = nullptr;
    image_ready_callback_.reset();
  }
  request(0);
  return_map_.insert(0, nullptr);
  if (render_thread_.joinable()) {
    render_thread_.join();
    log() << "background thread successfully joined. ";
  } else {
    log() << "Something went wrong. ";
    write_error("Background thread not joinable. ");
  }
  if (return_thread_.joinable()) return_thread_.join();  // a render thread that failed has left it behind
  snapshots_.drain();
  write_output("OpenGL control loop finished. Callbacks can be freed now. ");
  if (!control_) return;
  // Left behind by a render thread that failed. Not deleted here, where a context
  // of the client's may be current.
  const auto host = OpenGLHost::acquire();
  host->run([this] { control_.reset(); });
}

}  // namespace oct
