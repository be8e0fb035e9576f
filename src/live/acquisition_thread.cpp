#include "live/acquisition_thread.h"

#include <system_error>

#include "core/exception.h"
#include "core/trace/thread_name.h"

namespace oct {
namespace {

std::system_error deadlock() {
  return std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
}

StateError already_running() {
  return StateError("BrennickDataSource already running");
}

}  // namespace

std::unique_lock<std::mutex> AcquisitionThread::lock_idle() {
  if (going_on_) throw already_running();
  if (on_own_thread()) throw deadlock();
  std::unique_lock lock(thread_mutex_, std::try_to_lock);
  if (!lock || !idle()) throw already_running();
  return lock;
}

void AcquisitionThread::start(const std::function<void(Run)>& before) {
  const auto lock = lock_idle();
  // A thread that has ended by itself is still joinable; assigning to it would end the process.
  if (thread_.joinable()) thread_.join();
  {
    const std::lock_guard request(request_mutex_);
    before(run_ + 1);
    ++run_;
    ended_ = false;
    going_on_ = true;
  }
  try {
    thread_ = std::thread([this] { run(); });
  } catch (...) {
    end();
    ended_ = true;
    throw;
  }
}

void AcquisitionThread::run() {
  name_thread("OCT acquisition");
  own_thread_ = std::this_thread::get_id();
  body_();
  end();
  own_thread_ = std::thread::id();
  ended_ = true;
}

AcquisitionThread::Run AcquisitionThread::ask_to_end(const std::function<void(Run)>& also) {
  const std::lock_guard lock(request_mutex_);
  going_on_ = false;  // first: whatever lets the thread go on then shall not let it begin anew
  also(run_);
  asked_.notify_all();
  return run_;
}

void AcquisitionThread::join(Run asked) {
  if (on_own_thread()) throw deadlock();
  const std::lock_guard lock(thread_mutex_);
  if (run_ == asked && thread_.joinable()) thread_.join();
}

void AcquisitionThread::await_end() {
  if (going_on_ || on_own_thread()) return;
  const std::lock_guard lock(thread_mutex_);
  if (!going_on_ && thread_.joinable()) thread_.join();
}

void AcquisitionThread::end() {
  const std::lock_guard lock(request_mutex_);
  going_on_ = false;
  asked_.notify_all();
}

void AcquisitionThread::pause(std::chrono::milliseconds length) {
  std::unique_lock lock(request_mutex_);
  asked_.wait_for(lock, length, [this] { return !going_on_; });
}

void AcquisitionThread::await_request() {
  std::unique_lock lock(request_mutex_);
  asked_.wait(lock, [this] { return !going_on_; });
}

}  // namespace oct
