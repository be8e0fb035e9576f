// The state of a live renderer, and who waits for the rendering thread to bring it about.
#pragma once

#include <atomic>
#include <cstdint>
#include <future>
#include <mutex>

namespace oct {

enum class LiveState : std::uint32_t {
  initialize = 0,
  running = 1,
  deinitialize_requested = 2,
  stopped = 3,
  invalidated = 4
};

// Requests come from any thread; the rendering thread observes one, does the work and completes it. A request
// that came in between is not overwritten: the rendering thread finds it in the next frame.
class Transition {
 public:
  struct Request {
    LiveState state;
    std::uint64_t number;
  };

  // Initialize or invalidated. Whoever waits for the request before gets a broken promise.
  void request(LiveState state);

  // Releases whoever waits: without a rendering thread nobody else would.
  void request_stop();

  Request observe() const;
  LiveState state() const { return state_; }

  // Initialisation done: running, and the promise is kept. Throws std::future_error if it was kept before.
  void complete_start(const Request& request);
  // De-initialisation done: stopped. The promise was kept by the request.
  void complete_stop(const Request& request);

  // Blocks until the promise is kept. Throws std::future_error when a newer request abandons it, and when
  // somebody waits for it already.
  void wait();

 private:
  bool current(const Request& request) const { return request.number == number_; }

  mutable std::mutex mutex_;
  std::atomic<LiveState> state_ = LiveState::stopped;  // written under the mutex
  std::uint64_t number_ = 0;                           // of the latest request
  std::promise<void> promise_;
  bool signalled_ = false;
};

}  // namespace oct
