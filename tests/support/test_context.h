// An OpenGL context for tests of what lies below the exports.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "gl/context/current_context.h"
#include "gl/context/opengl_context.h"
#include "gl/context/opengl_loader.h"
#include "gl/context/opengl_window.h"
#include "gl/gl.h"
#include "gl/opengl_error.h"

namespace oct::test {

class TestContext {
 public:
  TestContext() : context_(window_) {
    context_.makeCurrent();
    gl::initGlew();
  }
  void makeCurrent() { context_.makeCurrent(); }

 private:
  gl::OpenGLWindow window_;
  gl::OpenGLContext context_;
};

// A context of a client's: the library did not make it and is not told when it goes.
class ClientContext {
 public:
  ClientContext() : handle_(window_.createContext()) { makeCurrent(); }
  ~ClientContext() {
    if (gl::current_context() == handle_) window_.makeUncurrent();
    window_.deleteContext(handle_);
  }
  ClientContext(const ClientContext&) = delete;
  ClientContext& operator=(const ClientContext&) = delete;

  void makeCurrent() {
    window_.makeCurrent(handle_);
    gl::initGlew();
  }
  gl::ContextHandle handle() const { return handle_; }

 private:
  gl::OpenGLWindow window_;
  const gl::ContextHandle handle_;
};

// Starts every test with a context current and ends it without OpenGL error.
class GLTest : public testing::Test {
 protected:
  void TearDown() override;
  TestContext context_;
};

// The pending error of the error store, "(none)" when there is none.
std::string pending_error();

// Calls that are refused, each with its error.
void expect_refused(const std::vector<std::pair<std::string, std::function<void()>>>& calls);

// What the action throws, "(none)" if nothing.
std::string failure_of(const std::function<void()>& action);

// Exports that are called with a null handle, and with zeros else, print and post this error and no other; a
// pointer that is no handle is refused as one.
template <class... Exports>
void expect_null_refused(const std::string& error, Exports... exports) {
  int index = 0;
  const auto refused =
      [&]<class Result, class Handle, class... Others>(Result (*function)(Handle, Others...)) {
        static char foreign[64];
        for (char* const handle : {static_cast<char*>(nullptr), foreign}) {
          const std::string text = handle ? "The handle is not valid. " : error;
          testing::internal::CaptureStderr();
          function(reinterpret_cast<Handle>(handle), Others{}...);
          EXPECT_EQ(testing::internal::GetCapturedStderr(), "An error occured: " + text + "\n") << index;
          EXPECT_EQ(pending_error(), text) << index;
        }
        ++index;
      };
  (refused(exports), ...);
}

// Calls the action with 0, 1, ... on so many threads and waits for them.
template <class Action>
void on_threads(int count, Action&& action) {
  std::vector<std::thread> threads;
  for (int i = 0; i < count; ++i) threads.emplace_back([&action, i] { action(i); });
  for (std::thread& thread : threads) thread.join();
}

inline bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// Forgets the errors that OpenGL has to report.
void clear_gl_errors();

std::string text_of(const std::filesystem::path& file);

// Runs the action with the library log in a file of its own and returns what was logged.
std::string log_of(const std::function<void()>& action);

}  // namespace oct::test
