#include "hosting/loop/opengl_control.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>
#include <utility>

#include "core/console.h"
#include "core/exception.h"
#include "core/log.h"
#include "core/timing_mark.h"
#include "gl/context/opengl_loader.h"
#include "gl/opengl_error.h"
#include "gl/trace/debugging.h"
#include "hosting/host/opengl_host.h"
#include "hosting/loop/test_image.h"

namespace oct {
namespace {

constexpr std::int32_t ring_size = 3;
constexpr auto patience = std::chrono::milliseconds(1000);
constexpr auto pause = std::chrono::milliseconds(10);  // between attempts, so that they do not hold up others

std::atomic<int> test_image_angle{0};  // degrees

}  // namespace

OpenGLControl::OpenGLControl(const SurfaceType& surfaces) : host_(OpenGLHost::acquire()) {
  const TimingMark mark("OpenGLControl");
  create_context(surfaces.sharing);
  device_.emplace(*source_);
  for (std::int32_t index = 0; index < ring_size; ++index) {
    buffers_.push_back(source_->create_buffer(index, surfaces.format));
  }
}

void OpenGLControl::create_context(SurfaceSharing sharing) {
  const auto start = std::chrono::steady_clock::now();
  bool is_known = false;
  for (;; std::this_thread::sleep_for(pause)) {
    if (std::chrono::steady_clock::now() - start >= patience) {
      throw OpenGLError("Cannot properly create an OpenGLControl.");
    }
    try {
      context_ = std::make_unique<gl::OpenGLContext>(host_->window());
    } catch (const std::exception& error) {
      log() << error.what();
      continue;
    }
    context_->makeCurrent();
    if (!std::exchange(is_known, true)) log_opengl_renderer();
    gl::initGlew();
    gl::printGLError("OpenGLControl");
    gl::checkOpenGLVersion(3, 3);
    gl::log_opengl_messages();
    source_ = surface_kind(sharing).open_source();
    if (source_) return;
    context_.reset();
  }
}

OpenGLControl::~OpenGLControl() {
  if (!context_->is_current()) at_end_.replace(gl::CurrentContext());
  try {
    context_->makeCurrent();
    for (const auto& buffer : buffers_) buffer->release();
  } catch (const std::exception& error) {
    write_error(error.what());
  }
}

void OpenGLControl::rotate_buffers() {
  std::rotate(buffers_.begin(), buffers_.begin() + 1, buffers_.end());
}

void OpenGLControl::render_test_image() {
  context_->makeCurrent();
  draw_test_image(++test_image_angle);
}

void OpenGLControl::make_current() {
  context_->makeCurrent();
}

void OpenGLControl::make_uncurrent() {
  host_->window().makeUncurrent();
}

}  // namespace oct
