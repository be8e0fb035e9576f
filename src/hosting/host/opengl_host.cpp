#include "hosting/host/opengl_host.h"

#include <utility>

#include "core/console.h"
#include "core/immortal.h"
#include "core/timing_mark.h"
#include "core/trace/thread_name.h"

namespace oct {
namespace {

struct ProcessHost {
  std::mutex mutex;
  std::weak_ptr<OpenGLHost> current;
  std::shared_ptr<OpenGLHost> prepared;

  void close() {
    const std::unique_lock lock(mutex, std::try_to_lock);
    if (lock && current.expired()) current.reset();
  }
};

// A thread cannot be joined while the library is being unloaded.
ProcessHost& process_host() {
  return immortal<ProcessHost>();
}

}  // namespace

OpenGLHost::OpenGLHost() {
  thread_ = std::thread([this] { run_thread(); });
  std::unique_lock lock(mutex_);
  started_.wait(lock, [this] { return has_started_; });
  if (!failure_) return;
  lock.unlock();
  thread_.join();
  std::rethrow_exception(failure_);
}

OpenGLHost::~OpenGLHost() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  sleeper_.wake();
  thread_.join();
}

void OpenGLHost::run_thread() {
  name_thread("OCT windows");
  try {
    window_ = std::make_unique<gl::OpenGLWindow>();
  } catch (...) {
    failure_ = std::current_exception();
  }
  {
    const std::lock_guard lock(mutex_);
    has_started_ = true;
  }
  started_.notify_all();
  if (failure_) return;
  try {
    run_tasks();
  } catch (const std::exception& error) {
    write_error(error.what());
  }
  window_.reset();
}

void OpenGLHost::run_tasks() {
  for (;;) {
    sleeper_.sleep();
    std::unique_lock lock(mutex_);
    while (!tasks_.empty()) {
      auto task = std::move(tasks_.front());
      tasks_.pop_front();
      lock.unlock();
      {
        const TimingMark mark("task of the host thread");
        task();
      }
      lock.lock();
    }
    if (ending_) return;
  }
}

void OpenGLHost::run(std::function<void()> task) {
  std::packaged_task<void()> packaged(std::move(task));
  auto done = packaged.get_future();
  if (std::this_thread::get_id() == thread_.get_id()) {
    packaged();
  } else {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(packaged));
    sleeper_.wake();
  }
  const TimingMark mark("wait for the host thread");
  done.get();
}

std::shared_ptr<OpenGLHost> OpenGLHost::acquire() {
  ProcessHost& process = process_host();
  const std::lock_guard lock(process.mutex);
  auto host = process.current.lock();
  if (!host) {
    host = std::make_shared<OpenGLHost>();
    process.current = host;
  }
  return host;
}

void OpenGLHost::prepare() {
  auto host = acquire();
  const std::lock_guard lock(process_host().mutex);
  if (!process_host().prepared) process_host().prepared = std::move(host);
}

void OpenGLHost::finish() {
  std::shared_ptr<OpenGLHost> host;
  {
    const std::lock_guard lock(process_host().mutex);
    host = std::move(process_host().prepared);
    process_host().prepared.reset();
  }
  if (!host) return;
  const TimingMark mark("OfflienRenderingWindows are destroyed. ");
  host.reset();
}

}  // namespace oct
