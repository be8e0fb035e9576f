// The thread that owns the hidden windows of all controls and of Direct3D and answers their messages.
#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <thread>

#include "gl/context/opengl_window.h"
#include "hosting/host/host_sleeper.h"
#include "hosting/host/module_reference.h"

namespace oct {

// Windows die with the thread that made them, and a window whose thread answers no messages holds up every
// program that sends one to all windows. Therefore no control makes a window on a thread of a client's.
class OpenGLHost {
 public:
  OpenGLHost();
  ~OpenGLHost();
  OpenGLHost(const OpenGLHost&) = delete;
  OpenGLHost& operator=(const OpenGLHost&) = delete;

  gl::OpenGLWindow& window() { return *window_; }

  // Runs the task on the host thread, waits for its end and throws what it throws.
  void run(std::function<void()> task);

  // The host of the process, made if there is none; it lives as long as somebody holds it.
  static std::shared_ptr<OpenGLHost> acquire();

  static void prepare();  // holds the host of the process until finish
  static void finish();

 private:
  void run_thread();
  void run_tasks();

  const ModuleReference module_;  // the last to go
  HostSleeper sleeper_;
  std::mutex mutex_;
  std::condition_variable started_;
  bool has_started_ = false;
  std::exception_ptr failure_;
  bool ending_ = false;
  std::deque<std::packaged_task<void()>> tasks_;
  std::unique_ptr<gl::OpenGLWindow> window_;
  std::thread thread_;
};

}  // namespace oct
