// An OpenGL context for tests of what lies below the exports.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "gl/gl.h"
#include "gl/opengl_context.h"
#include "gl/opengl_loader.h"
#include "gl/opengl_window.h"

namespace oct::test {

class TestContext {
 public:
  TestContext() : context_(window_) {
    context_.makeCurrent();
    gl::initGlew();
  }
  void makeCurrent() { context_.makeCurrent(); }
  gl::OpenGLWindow& window() { return window_; }

 private:
  gl::OpenGLWindow window_;
  gl::OpenGLContext context_;
};

// Starts every test with a context current and ends it without OpenGL error.
class GLTest : public testing::Test {
 protected:
  void TearDown() override;
  TestContext context_;
};

// The pending error of the error store, "(none)" when there is none.
std::string pendingError();

// Runs the action with the library log in a file of its own and returns what was logged.
std::string logOf(const std::function<void()>& action);

}  // namespace oct::test
