#include "hosting/loop/opengl_control_loop.h"

#include <array>
#include <chrono>
#include <string>
#include <system_error>
#include <utility>

#include "core/console.h"
#include "core/exception.h"
#include "core/log.h"
#include "core/timing_mark.h"
#include "core/trace/thread_name.h"
#include "gl/opengl_error.h"
#include "gl/trace/pass_mark.h"
#include "hosting/loop/opengl_control.h"
#include "hosting/loop/render_trace.h"
#include "hosting/offscreen/offscreen_buffer_object.h"
#include "hosting/surfaces/client_surfaces.h"
#include "hosting/surfaces/hand_off_buffer.h"

namespace oct {
namespace {

using std::chrono::steady_clock;

// Longer than a client takes between two requests that belong together, shorter than anybody notices.
constexpr auto spin_time = std::chrono::microseconds(100);
constexpr const char* thread_ended = "The rendering thread of the control loop has ended. ";

std::int64_t nanoseconds_now() {
  const auto now = steady_clock::now().time_since_epoch();
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

void check_viewport(std::uint32_t width, std::uint32_t height) {
  std::array<GLint, 2> most{};
  glGetIntegerv(GL_MAX_VIEWPORT_DIMS, most.data());
  if (std::cmp_greater(width, most[0]) || std::cmp_greater(height, most[1])) {
    render_target_failed("It is larger than OpenGL's largest viewport. ");
  }
}

// For what is told on the way out, which must go on where there is no memory to tell it.
template <class Action>
void attempt(Action&& action) noexcept {
  try {
    action();
  } catch (...) {
  }
}

}  // namespace

OpenGLControlLoop::OpenGLControlLoop(Callback initCallback, Callback uninitCallback,
                                     ErrorCallback errorCallback)
    : error_callback_(std::move(errorCallback)),
      init_callback_(std::move(initCallback)),
      uninit_callback_(std::move(uninitCallback)),
      surfaces_(surfaces_to_come()) {
  const TimingMark mark("OpenGLControlLoop");
  try {
    start_threads();
  } catch (const std::exception& error) {
    end_threads();
    throw Exception(kind_of(error),
                    std::string("The threads of the control loop could not be started: ") + error.what());
  }
  start_gate_.wait();
}

void OpenGLControlLoop::start_threads() {
  return_thread_ = std::thread([this] { return_loop(); });
  render_thread_ = std::thread([this] { rendering_loop(); });
}

OpenGLControlLoop::~OpenGLControlLoop() {
  if (!has_ended_) shut_down();
}

void OpenGLControlLoop::end() {
  refuse_own_threads();
  shut_down();
}

void OpenGLControlLoop::refuse_own_threads() const {
  const auto self = std::this_thread::get_id();
  if (self == render_thread_id_.load() || self == return_thread_id_.load()) {
    throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
  }
}

void OpenGLControlLoop::request(std::int32_t id) {
  request_queue_.add(id);
}

// What is set during a snapshot holds when it ends. Nothing ends the mode of snapshots that a client has set
// itself.
void OpenGLControlLoop::set_mode(Mode mode) {
  {
    const std::lock_guard lock(mode_mutex_);
    if (desk_.busy() ? mode == snapshot_mode : mode_ == snapshot_mode) return;
    mode_ = mode;
  }
  request_queue_.wake();
}

void OpenGLControlLoop::resize(std::uint32_t width, std::uint32_t height) {
  size_ = static_cast<std::uint64_t>(width) << 32 | height;
  request_queue_.wake();
}

OpenGLControlLoop::Size OpenGLControlLoop::size() const {
  const std::uint64_t both = size_;
  return {static_cast<std::uint32_t>(both >> 32), static_cast<std::uint32_t>(both)};
}

void OpenGLControlLoop::set_rendering_callback(RenderingCallback callback) {
  refuse_own_threads();
  const std::lock_guard lock(rendering_callback_mutex_);
  rendering_callback_.swap(callback);
}

void OpenGLControlLoop::set_image_ready_callback(std::optional<ImageReadyCallback> callback) {
  refuse_own_threads();
  const std::lock_guard lock(image_ready_mutex_);
  image_ready_callback_.swap(callback);
}

void OpenGLControlLoop::snapshot(std::uint32_t width, std::uint32_t height, void* data,
                                 gl::PixelFormat format) {
  const TimingMark mark("OpenGLControlLoop::snap");
  if (std::this_thread::get_id() == render_thread_id_.load()) {
    throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
  }
  if (mode_ == snapshot_mode) return;
  if (size().empty()) throw StateError("A control loop without a size takes no snapshots. ");
  if (!desk_.place({width, height, format, data})) return;
  request_queue_.wake();
  return_map_.wake();  // a render thread that waits for the client draws the snapshot first
  trace_render_call(0);
  desk_.wait();
}

void OpenGLControlLoop::rendering_loop() noexcept {
  name_thread("OCT render");
  render_thread_id_ = std::this_thread::get_id();
  try {
    try {
      render();
      return;
    } catch (const std::exception& error) {
      const Reason reason = reason_of(error);
      let_everybody_go(reason);
      attempt([&] { log() << "Rendering loop: " << error.what(); });
      tell_client(reason.text);
    } catch (...) {
      let_everybody_go({ErrorKind::state, thread_ended});
      log() << "Rendering loop, unknown error.";
    }
  } catch (...) {
    attempt([] { write_error("Unexpected error in rendering_loop()."); });
  }
  rest();
}

// What an error has left behind is deleted on this thread, where its context lives. Until then the client may be looking
// at a frame of it.
void OpenGLControlLoop::rest() {
  if (!control_) return;
  control_->make_uncurrent();
  request_queue_.wait([this](RequestQueue::Content) { return !running_; });
  if (return_thread_.joinable()) return_thread_.join();
  control_.reset();
}

// Without its device whatever is tried fails, each in a way of its own.
OpenGLControlLoop::Reason OpenGLControlLoop::reason_of(const std::exception& error) noexcept {
  bool removed = false;
  attempt([&] {
    if (!control_) return;
    control_->make_current();
    removed = control_->device().removed();
  });
  if (removed) return {ErrorKind::opengl, graphics_device_removed};
  return {kind_of(error), error.what()};
}

// The render thread ends: nobody may wait for a frame any more. The loop stays as it is until it is deleted.
void OpenGLControlLoop::let_everybody_go(const Reason& reason) noexcept {
  desk_.close(thread_ended);
  desk_.fail(reason.kind, reason.text);
  start_gate_.signal();
}

// With the context current: it is the client's last chance to uninitialise what it draws with.
void OpenGLControlLoop::tell_client(const char* message) {
  if (!error_callback_) return;
  attempt([this] {
    if (control_) control_->make_current();
  });
  error_callback_(message);
}

void OpenGLControlLoop::render() {
  const TimingMark mark("Rendering Loop");
  control_ = std::make_unique<OpenGLControl>(surfaces_);
  start_gate_.signal();
  if (init_callback_) init_callback_();
  control_->make_current();
  render_clock.start();
  while (running_) render_iteration();

  return_map_.close();
  if (return_thread_.joinable()) {
    return_thread_.join();
  } else {
    write_error("Background return thread not joinable. ");
  }
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
  await_work();
  if (!running_ || serve_snapshot(request_queue_.front().value_or(0))) return;
  const RequestQueue::Request request = next_request();
  if (!request || *request == no_request) return;
  if (!size().empty()) render_frame(*request);
  render_clock.tick();
}

void OpenGLControlLoop::await_work() {
  const auto something_to_do = [this] { return has_work(request_queue_.content()); };
  const bool busy = something_to_do();
  hand_over(!busy);  // with nothing else to do there is time to wait for the GPU
  if (busy) return;
  if (mode_ == round_robin) {
    const auto end = steady_clock::now() + spin_time;
    while (steady_clock::now() < end) {
      if (something_to_do()) return;
      std::this_thread::yield();
    }
  }
  const TimingMark mark("wait for requests");
  request_queue_.wait([this](RequestQueue::Content queued) { return has_work(queued); });
}

bool OpenGLControlLoop::has_work(RequestQueue::Content queued) const {
  if (!running_ || desk_.has_order()) return true;
  // What is asked for once is dropped where it cannot be drawn; everything else stays until it can.
  return mode_ == once_each ? queued.any : queued.drawable && !size().empty();
}

// Never waits: the mode may have changed since the queue was seen to hold something.
RequestQueue::Request OpenGLControlLoop::next_request() {
  switch (mode_) {
    case once_each:
      return request_queue_.take();
    case snapshot_mode:
      return request_queue_.front();
    default:
      return request_queue_.rotate();
  }
}

void OpenGLControlLoop::render_frame(std::int32_t request) {
  const TimingMark mark("rendering_loop_it_excl");
  HandOffBuffer& buffer = control_->current_buffer();
  // A frame that the client has not got yet is not drawn over: its buffer would arrive twice with the later
  // frame. A snapshot does not wait for the client, who may be asking for it in the very callback.
  if (&buffer == unfinished_) hand_over(true);
  if (!await_buffer(buffer, request)) return;

  const Size wanted = size();
  if (wanted.empty()) return;  // since the client was waited for
  auto lock = buffer.lock();
  if (buffer.width() != wanted.width || buffer.height() != wanted.height) {
    buffer.resize(wanted.width, wanted.height);
  }
  {
    const gl::PassMark callback_mark("Rendering callback (", std::to_string(buffer.buffer_id()) + ")");
    buffer.prepare(request);
    draw(request);
    buffer.finish();
    control_->device().check();
  }
  record_timing_mark("frame end");
  control_->rotate_buffers();
  lock.unlock();
  // The frame before had the time of this one to be read back.
  hand_over(true);
  unfinished_ = &buffer;
  unfinished_since_ = begin_timing_wait();
  hand_over(false);
}

// Until the client has given the buffer back; snapshots are drawn meanwhile. False when the loop ends.
bool OpenGLControlLoop::await_buffer(const HandOffBuffer& buffer, std::int32_t request) {
  const auto interrupted = [this] { return !running_ || desk_.has_order(); };
  for (;;) {
    {
      const TimingMark mark("wait for the client");
      if (return_map_.wait_until_returned(&buffer, interrupted)) return true;
    }
    if (!running_) return false;
    serve_snapshot(request);
  }
}

// Draws the snapshot that a client has ordered, if any, with this id.
bool OpenGLControlLoop::serve_snapshot(std::int32_t request) {
  const auto order = desk_.take();
  if (!order) return false;
  const auto failure = draw_snapshot(*order, request);
  failure ? desk_.fail(failure->kind(), failure->what()) : desk_.finish();
  return true;
}

// The reason when it could not be drawn, which concerns nobody but who ordered it. What the client's function
// throws ends the thread as it does in any frame. The target is gone afterwards: snapshots are rare and may
// be large.
std::optional<Exception> OpenGLControlLoop::draw_snapshot(const SnapshotDesk::Order& order,
                                                          std::int32_t request) {
  OffscreenBufferObject target;
  const bool empty = order.width == 0 || order.height == 0;
  const gl::PassMark callback_mark("Rendering callback (-1)");
  try {
    request_queue_.add(0);
    if (empty) return {};
    gl::discard_gl_errors();
    target.prepare(order.width, order.height);
    check_render_target();
    check_viewport(order.width, order.height);
  } catch (const std::exception& error) {
    return Exception(kind_of(error), error.what());
  }
  draw(request);
  std::optional<Exception> failure;
  try {
    gl::throwOnGLError("the snapshot");
    target.finish(order.data, order.format);
    gl::throwOnGLError("the snapshot");
    record_timing_mark("frame end");
  } catch (const std::exception& error) {
    failure.emplace(kind_of(error), error.what());
  }
  control_->device().check();
  return failure;
}

// With the context current afterwards, whatever the client's function has done.
void OpenGLControlLoop::draw(std::int32_t request) {
  const std::lock_guard lock(rendering_callback_mutex_);
  if (!running_) return;
  if (rendering_callback_) {
    rendering_callback_(static_cast<std::uint32_t>(request));
    control_->make_current();
  } else {
    const gl::PassMark mark("Test image callback");
    control_->render_test_image();
  }
}

// Gives the last frame to the return thread once the GPU is done with it.
void OpenGLControlLoop::hand_over(bool wait) {
  if (!unfinished_) return;
  const TimingMark mark("hand over");
  const auto lock = unfinished_->lock();
  if (!unfinished_->complete(wait)) return;
  record_timing_wait("frame is read back", unfinished_since_);
  HandOffBuffer* const finished = std::exchange(unfinished_, nullptr);
  return_map_.insert(finished->order_key(), finished);
}

void OpenGLControlLoop::return_loop() {
  name_thread("OCT return");
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
  start_gate_.wait();
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
      const ClientSurfaces::Loan loan(client_surfaces(), surfaces_, mapped->surface());
      (*image_ready_callback_)(mapped->index(), mapped->width(), mapped->height(), mapped->surface());
    }
  }
  mapped.reset();  // gives the buffer back
}

// Whether there was a render thread. Needs no memory; for a second time there is nothing to do.
bool OpenGLControlLoop::end_threads() {
  // A running snapshot is let finish; later ones are refused.
  desk_.close("The control loop is being deleted. ");
  desk_.drain();
  running_ = false;
  {
    const std::lock_guard rendering_lock(rendering_callback_mutex_);
    const std::lock_guard image_ready_lock(image_ready_mutex_);
    rendering_callback_ = nullptr;
    image_ready_callback_.reset();
  }
  start_gate_.signal();
  request_queue_.wake();
  return_map_.close();
  const bool joinable = render_thread_.joinable();
  if (joinable) render_thread_.join();
  if (return_thread_.joinable()) return_thread_.join();  // without a control nobody else has joined it
  return joinable;
}

void OpenGLControlLoop::shut_down() noexcept {
  attempt([this] {
    const TimingMark outer_mark("Destructing OpenGL Loop");
    const TimingMark inner_mark("~OpenGLControlLoop");
    tell_of_end(end_threads());
    has_ended_ = true;
  });
  if (!has_ended_) tell_of_end(end_threads());  // there was no memory for the marks
  has_ended_ = true;
}

void OpenGLControlLoop::tell_of_end(bool joined) noexcept {
  log() << (joined ? "background thread successfully joined. " : "Something went wrong. ");
  if (!joined) write_error("Background thread not joinable. ");
  write_output("OpenGL control loop finished. Callbacks can be freed now. ");
}

}  // namespace oct
