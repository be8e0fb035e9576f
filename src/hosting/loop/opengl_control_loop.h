// Draws frames on a thread of its own, as clients ask for them, and hands them back on another.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "core/error_callback.h"
#include "core/exception.h"
#include "core/timing_mark.h"
#include "hosting/host/signal_event.h"
#include "hosting/loop/functors.h"
#include "hosting/loop/request_queue.h"
#include "hosting/loop/return_map.h"
#include "hosting/loop/snapshot_desk.h"
#include "hosting/surfaces/surface_sharing.h"

namespace oct {

class HandOffBuffer;
class OpenGLControl;

// What is drawn is the rendering callback's business; without one the loop draws a test image. Public
// operations may be called on any thread.
class OpenGLControlLoop {
 public:
  // How the render thread takes the next request.
  enum class Mode : std::uint32_t {
    once_each = 0,     // waits for requests; each is drawn once
    round_robin = 1,   // draws all requests in turn, for ever
    snapshot_mode = 2  // draws the front request again and again
    // Any other number waits as once_each does and draws as round_robin does.
  };
  using enum Mode;

  // Returns when the render thread has made its control, or has failed to. Any callback may be empty. Throws
  // when the system gives no threads.
  explicit OpenGLControlLoop(Callback initCallback = {}, Callback uninitCallback = {},
                             ErrorCallback errorCallback = {});
  ~OpenGLControlLoop();
  OpenGLControlLoop(const OpenGLControlLoop&) = delete;
  OpenGLControlLoop& operator=(const OpenGLControlLoop&) = delete;

  // Ends both threads, as the destructor does otherwise; the other operations may be called until it returns. Throws
  // the resource-deadlock error on the loop's own threads, which cannot wait for their own end.
  void end();

  void request(std::int32_t id);
  void set_mode(Mode mode);
  void resize(std::uint32_t width, std::uint32_t height);

  // Refused on the loop's own threads as deletion is: either may hold what the other waits for.
  void set_rendering_callback(RenderingCallback callback);
  void set_image_ready_callback(std::optional<ImageReadyCallback> callback);

  // Draws a frame of the given size into client memory and returns when it is there. The frame begins after the
  // call. Does nothing while another snapshot is running. Throws when the picture cannot be drawn.
  void snapshot(std::uint32_t width, std::uint32_t height, void* data,
                gl::PixelFormat format = gl::PixelFormat::bgra);

  const SurfaceType& surfaces() const { return surfaces_; }

 private:
  struct Size {
    std::uint32_t width;
    std::uint32_t height;
    bool empty() const { return width == 0 || height == 0; }
  };

  Size size() const;
  void refuse_own_threads() const;
  void rendering_loop() noexcept;
  void render();
  void render_iteration();
  void await_work();
  bool has_work(RequestQueue::Content queued) const;
  RequestQueue::Request next_request();
  void render_frame(std::int32_t request);
  bool await_buffer(const HandOffBuffer& buffer, std::int32_t request);
  bool serve_snapshot(std::int32_t request);
  std::optional<Exception> draw_snapshot(const SnapshotDesk::Order& order, std::int32_t request);
  void draw(std::int32_t request);
  void hand_over(bool wait);
  struct Reason {
    ErrorKind kind;
    const char* text;
  };

  Reason reason_of(const std::exception& error) noexcept;
  void let_everybody_go(const Reason& reason) noexcept;
  void tell_client(const char* message);
  void rest();
  void return_loop();
  void return_frames();
  void give_to_client(HandOffBuffer& buffer);
  void start_threads();
  bool end_threads();
  void shut_down() noexcept;
  static void tell_of_end(bool joined) noexcept;

  bool has_ended_ = false;
  std::atomic<Mode> mode_{round_robin};
  const ErrorCallback error_callback_;
  RenderingCallback rendering_callback_;                    // guarded by rendering_callback_mutex_
  std::optional<ImageReadyCallback> image_ready_callback_;  // guarded by image_ready_mutex_
  const Callback init_callback_;
  const Callback uninit_callback_;
  std::mutex rendering_callback_mutex_;
  std::mutex image_ready_mutex_;
  std::atomic<bool> running_{true};
  RequestQueue request_queue_;
  ReturnMap return_map_;
  SignalEvent start_gate_;
  std::unique_ptr<OpenGLControl> control_;
  std::atomic<std::uint64_t> size_{0};  // width in the upper half, so that both change together
  const SurfaceType surfaces_;
  HandOffBuffer* unfinished_ = nullptr;  // of the render thread: its frame still waits for the GPU
  TimingListener::Time unfinished_since_;
  SnapshotDesk desk_;
  std::mutex mode_mutex_;
  std::atomic<std::thread::id> render_thread_id_{};
  std::atomic<std::thread::id> return_thread_id_{};
  std::thread return_thread_;
  std::thread render_thread_;
};

}  // namespace oct
