#include "hosting/loop/opengl_control_loop.h"

#include <chrono>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "core/console.h"
#include "core/log.h"
#include "core/timing_mark.h"
#include "hosting/loop/opengl_control.h"
#include "hosting/host/opengl_host.h"
#include "hosting/loop/render_trace.h"

namespace oct {
namespace {

constexpr std::uint32_t gateValue = 0xFFFFFFFFU;
constexpr const char* threadEnded = "The rendering thread of the control loop has ended. ";

std::int64_t nanosecondsNow() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
}

// Counts the iterations of all loops and marks the time that 50 of them took, from the first on.
class IterationClock {
 public:
  explicit IterationClock(const char* markName) : markName_(markName) {}

  void start() { reference_ = nanosecondsNow(); }
  void tick() {
    if (iterations_++ % 50 != 0) return;
    const std::int64_t now = nanosecondsNow();
    recordTimingMark(markName_ + std::to_string((now - reference_.exchange(now)) / 1'000'000) + " ms");
  }

 private:
  const char* const markName_;
  std::atomic<std::uint64_t> iterations_{0};
  std::atomic<std::int64_t> reference_{0};  // nanoseconds
};

IterationClock renderClock("50 iterations of rendering loops: ");
IterationClock returnClock("50 iterations of return loops: ");

class Visit {
 public:
  explicit Visit(Visitors& visitors) : visitors_(visitors) {
    if (!visitors_.enter()) throw std::runtime_error(threadEnded);
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
    : errorCallback_(std::move(errorCallback)),
      initCallback_(std::move(initCallback)),
      uninitCallback_(std::move(uninitCallback)),
      sharing_(surfaceSharing()) {
  const TimingMark mark("OpenGLControlLoop");
  renderThread_ = std::thread([this] { rendering_loop(); });
  startGate_.wait([] {});
}

OpenGLControlLoop::~OpenGLControlLoop() {
  try {
    shut_down();
  } catch (const std::exception& error) {
    writeError(error.what());
  }
}

void OpenGLControlLoop::check_deletable() const {
  const auto self = std::this_thread::get_id();
  if (self == renderThreadId_.load() || self == returnThreadId_.load()) {
    throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
  }
}

void OpenGLControlLoop::request(std::int32_t id) {
  requestQueue_.add(id);
}

void OpenGLControlLoop::set_mode(Mode mode) {
  if (mode == mode_) return;
  const std::lock_guard lock(modeMutex_);
  if (mode_ == snapshotMode) {
    pendingMode_ = mode;
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
  const std::lock_guard lock(renderingCallbackMutex_);
  renderingCallback_.swap(callback);
}

void OpenGLControlLoop::set_image_ready_callback(std::optional<ImageReadyCallback> callback) {
  const std::lock_guard lock(imageReadyMutex_);
  imageReadyCallback_.swap(callback);
}

void OpenGLControlLoop::snapshot(std::uint32_t width, std::uint32_t height, void* data) {
  const TimingMark mark("OpenGLControlLoop::snap");
  if (std::this_thread::get_id() == renderThreadId_.load()) {
    throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
  }
  if (mode_ == snapshotMode) return;
  const Visit visit(snapshots_);
  {
    const std::scoped_lock lock(snapshotMutex_, modeMutex_);
    if (mode_ == snapshotMode) return;  // another client was quicker
    pendingMode_ = mode_.exchange(snapshotMode);
  }
  control_->snapshot(width, height, data);
  traceRenderCall(0);
  request(0);
  returnMap_.wake();  // a render thread that waits for the client draws the snapshot first
  const bool drawn = control_->wait_for_snapshot();
  {
    const std::scoped_lock lock(snapshotMutex_, modeMutex_);
    mode_.exchange(pendingMode_);
  }
  if (!drawn) throw std::runtime_error(threadEnded);
}

void OpenGLControlLoop::rendering_loop() noexcept {
  renderThreadId_ = std::this_thread::get_id();
  try {
    try {
      render();
    } catch (const std::exception& error) {
      log() << "Rendering loop: " << error.what();
      render_thread_failed();
      if (errorCallback_) errorCallback_(error.what());
    } catch (...) {
      log() << "Rendering loop, unknown error.";
      render_thread_failed();
    }
  } catch (...) {
    writeError("Unexpected error in rendering_loop().");
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
  startGate_.signal(gateValue);
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
  returnThread_ = std::thread([this] { return_loop(); });
  startGate_.signal(gateValue);
  if (initCallback_) initCallback_();
  renderClock.start();
  while (running_) render_iteration();

  returnMap_.insert(0, nullptr);
  if (returnThread_.joinable()) {
    returnThread_.join();
  } else {
    writeError("Background return thread not joinable. ");
  }
  end_snapshots();
  if (uninitCallback_) {
    const TimingMark uninitMark("Uninit of specific OpenGL control");
    uninitCallback_();
  }
  std::unique_ptr<OpenGLControl> control = std::move(control_);
  control.reset();
  log() << "Rendering loop finished. ";
}

void OpenGLControlLoop::render_iteration() {
  const TimingMark mark("rendering_loop_it_incl");
  // With nothing else to do there is time to wait for the GPU.
  hand_over(requestQueue_.empty());
  if (mode_ != roundRobin) requestQueue_.wait();
  bool taken = false;
  const RequestQueue::Request request = next_request(taken);
  if (!request || *request == noRequest) {
    std::this_thread::yield();
    return;
  }
  const Size current = size();
  if (current.width != 0 && current.height != 0) {
    render_frame(*request, taken);
  } else {
    std::this_thread::yield();
  }
  renderClock.tick();
}

// Never waits: the mode may have changed since the queue was seen to hold something, and who wants to change
// it again needs the mutex.
RequestQueue::Request OpenGLControlLoop::next_request(bool& taken) {
  const std::lock_guard lock(modeMutex_);
  switch (mode_) {
    case onceEach:
      taken = true;
      return requestQueue_.take();
    case snapshotMode:
      return requestQueue_.front();
    default:
      return requestQueue_.rotate();
  }
}

void OpenGLControlLoop::render_frame(std::int32_t request, bool taken) {
  const TimingMark mark("rendering_loop_it_excl");
  if (render_snapshot(request, taken)) return;
  HandOffBuffer& buffer = control_->current_buffer();
  // A frame that the client has not got yet is not drawn over: its buffer would arrive twice with the later
  // frame, and out of order. A snapshot does not wait for the client, who may be asking for it in the very
  // callback.
  if (&buffer == unfinished_) hand_over(true);
  returnMap_.waitUntilReturned(&buffer, [this] { return !running_ || control_->pending_snapshot(); });
  if (render_snapshot(request, taken)) return;

  auto lock = buffer.lock();
  const Size wanted = size();
  if (buffer.width() != wanted.width || buffer.height() != wanted.height) {
    buffer.resize(wanted.width, wanted.height);
  }
  {
    const TimingMark callbackMark("Rendering callback (", std::to_string(buffer.buffer_id()) + ")");
    buffer.prepare(request);
    draw(request);
    buffer.finish();
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
  if (taken) requestQueue_.putBack(request);
  const TimingMark callbackMark("Rendering callback (-1)");
  snapshot->prepare();
  draw(request);
  snapshot->finish();
  return true;
}

void OpenGLControlLoop::draw(std::int32_t request) {
  const std::lock_guard lock(renderingCallbackMutex_);
  if (!running_) return;
  if (renderingCallback_) {
    renderingCallback_(static_cast<std::uint32_t>(request));
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
  returnMap_.insert(finished->order_key(), finished);
}

void OpenGLControlLoop::return_loop() {
  returnThreadId_ = std::this_thread::get_id();
  try {
    return_frames();
  } catch (...) {
    // Nobody can tell who holds the surface now; going on would hand out frames that are being drawn.
    writeError("Return thread crashed!!");
    recordTimingMark("Return thread crashed. ");
    throw;
  }
}

void OpenGLControlLoop::return_frames() {
  const TimingMark mark("Return loop");
  startGate_.wait([] {});
  returnClock.start();
  while (running_) {
    const TimingMark iterationMark("return_loop_it_incl");
    HandOffBuffer* const buffer = returnMap_.take();
    const TimingMark workMark("return_loop_it_excl");
    if (buffer) {
      give_to_client(*buffer);
      returnClock.tick();
    }
    returnMap_.returned();
  }
}

void OpenGLControlLoop::give_to_client(HandOffBuffer& buffer) {
  auto mapped = buffer.map();
  const TimingMark mark("Return buffer callback (", std::to_string(buffer.buffer_id()) + ")");
  if (!mapped || !running_) return;
  {
    const std::lock_guard lock(imageReadyMutex_);
    if (imageReadyCallback_) {
      (*imageReadyCallback_)(mapped->index(), mapped->width(), mapped->height(), mapped->surface());
    }
  }
  mapped.reset();  // gives the buffer back
}

void OpenGLControlLoop::shut_down() {
  const TimingMark outerMark("Destructing OpenGL Loop");
  const TimingMark innerMark("~OpenGLControlLoop");
  // A running snapshot is let finish, even one that has only changed the mode yet; that of a loop without a
  // size would never come.
  const Size current = size();
  if (mode_ == snapshotMode && current.width != 0 && current.height != 0) {
    snapshots_.close();
    snapshots_.drain();
  }
  running_ = false;
  {
    const std::lock_guard renderingLock(renderingCallbackMutex_);
    const std::lock_guard imageReadyLock(imageReadyMutex_);
    renderingCallback_ = nullptr;
    imageReadyCallback_.reset();
  }
  request(0);
  returnMap_.insert(0, nullptr);
  if (renderThread_.joinable()) {
    renderThread_.join();
    log() << "background thread successfully joined. ";
  } else {
    log() << "Something went wrong. ";
    writeError("Background thread not joinable. ");
  }
  if (returnThread_.joinable()) returnThread_.join();  // a render thread that failed has left it behind
  snapshots_.drain();
  writeOutput("OpenGL control loop finished. Callbacks can be freed now. ");
  if (!control_) return;
  // Left behind by a render thread that failed. Not deleted here, where a context of the client's may be
  // current.
  const auto host = OpenGLHost::acquire();
  host->run([this] { control_.reset(); });
}

}  // namespace oct
