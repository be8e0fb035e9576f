// Jobs that are done one after the other on a thread of their own.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace oct::app {

// At its end all jobs are done.
class BackgroundWork {
 public:
  BackgroundWork() : thread_([this] { run(); }) {}
  ~BackgroundWork() {
    {
      const std::lock_guard lock(mutex_);
      ending_ = true;
    }
    changed_.notify_all();
    thread_.join();
  }
  BackgroundWork(const BackgroundWork&) = delete;
  BackgroundWork& operator=(const BackgroundWork&) = delete;

  // The job throws nothing.
  void add(std::function<void()> job) {
    {
      const std::lock_guard lock(mutex_);
      jobs_.push_back(std::move(job));
    }
    changed_.notify_all();
  }

 private:
  void run() {
    std::unique_lock lock(mutex_);
    while (true) {
      changed_.wait(lock, [this] { return ending_ || !jobs_.empty(); });
      if (jobs_.empty()) return;
      std::function<void()> job = std::move(jobs_.front());
      jobs_.pop_front();
      lock.unlock();
      job();
      job = nullptr;  // what it holds may take long to end
      lock.lock();
    }
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> jobs_;
  bool ending_ = false;
  std::thread thread_;
};

}  // namespace oct::app
