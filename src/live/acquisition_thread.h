// A thread that is started, asked to end and waited for, any number of times and from any thread, its own
// included.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>

namespace oct {

class AcquisitionThread {
 public:
  // The body, which throws nothing, runs once per start. Whoever owns what it uses stops the thread first.
  explicit AcquisitionThread(std::function<void()> body) : body_(std::move(body)) {}
  AcquisitionThread(const AcquisitionThread&) = delete;
  AcquisitionThread& operator=(const AcquisitionThread&) = delete;

  using Run = std::uint64_t;  // counts starts

  // Throws while the thread lives, instead of waiting for it: the caller may hold a lock that a client's
  // callback on the ending thread waits for. await_end comes before such locks. `before` is called while
  // there is no thread.
  void start(const std::function<void(Run)>& before);

  // Asks the thread to end. `also` is called before or after what the thread does by if_going_on, never
  // meanwhile.
  Run ask_to_end(const std::function<void(Run)>& also);
  // Waits for the run that was asked to end; for no later one. On the thread itself it throws
  // std::system_error (resource_deadlock_would_occur).
  void join(Run asked);
  // Waits for a thread that has been asked to end or ends by itself; for no other, and not on the thread
  // itself.
  void await_end();

  bool is_alive() const { return !ended_; }

  // ---- For the body

  bool going_on() const { return going_on_; }
  void end();
  // Waits, or returns earlier when the thread is asked to end.
  void pause(std::chrono::milliseconds length);
  void await_request();  // to end
  // Whether the action was called: not once the thread has been asked to end.
  template <class Action>
  bool if_going_on(Action action) {
    const std::lock_guard lock(request_mutex_);
    if (!going_on_) return false;
    action();
    return true;
  }

 private:
  void run();
  bool idle() const { return !going_on_ && ended_; }
  bool on_own_thread() const { return own_thread_ == std::this_thread::get_id(); }
  std::unique_lock<std::mutex> lock_idle();

  const std::function<void()> body_;
  std::mutex thread_mutex_;   // held by whoever starts or joins the thread, never by the thread
  std::mutex request_mutex_;  // after thread_mutex_
  std::condition_variable asked_;
  std::thread thread_;
  Run run_ = 0;                         // written under both mutexes
  std::atomic<bool> going_on_ = false;  // written under request_mutex_
  std::atomic<bool> ended_ = true;      // the thread is past its body
  std::atomic<std::thread::id> own_thread_;
};

}  // namespace oct
