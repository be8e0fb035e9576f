// A control loop with a client that records what it is given.
#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/error_callback.h"
#include "gl/gl.h"
#include "hosting/loop/functors.h"
#include "hosting/loop/opengl_control_loop.h"
#include "support/surfaces.h"

namespace oct::test {

using Index = std::uint32_t;

inline ImageReadyCallback image_ready(std::function<void(Index, void* surface)> body) {
  return ImageReadyCallback(
      [body](Index index, std::uint32_t, std::uint32_t, void* surface) { body(index, surface); });
}

// A list that one thread appends to and another waits for.
template <class T>
class Recorded {
 public:
  void add(T value) {
    {
      const std::lock_guard lock(mutex_);
      values_.push_back(std::move(value));
    }
    condition_.notify_all();
  }

  // What there is once there are so many; fewer after ten seconds.
  std::vector<T> at_least(std::size_t count) {
    std::unique_lock lock(mutex_);
    condition_.wait_for(lock, std::chrono::seconds(10), [&] { return values_.size() >= count; });
    return values_;
  }

  std::vector<T> all() { return at_least(0); }

  void clear() {
    const std::lock_guard lock(mutex_);
    values_.clear();
  }

 private:
  std::mutex mutex_;
  std::condition_variable condition_;
  std::vector<T> values_;
};

// Holds the first thread that comes until it is opened; others pass.
class Gate {
 public:
  void pass() {
    if (come_.exchange(true)) return;
    arrived_.set_value();
    opened_.get_future().wait();
  }
  void await_arrival() { arrived_.get_future().wait(); }
  void open() { opened_.set_value(); }

 private:
  std::atomic<bool> come_{false};
  std::promise<void> arrived_;
  std::promise<void> opened_;
};

// Draws a picture that no other id has.
inline void draw_pattern(std::uint32_t id) {
  const auto clear = [](std::uint32_t colour) {
    glClearColor(static_cast<float>(colour >> 16 & 255U) / 255.0F,
                 static_cast<float>(colour >> 8 & 255U) / 255.0F, static_cast<float>(colour & 255U) / 255.0F,
                 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
  };
  clear(id);
  GLint viewport[4] = {};
  glGetIntegerv(GL_VIEWPORT, viewport);
  glEnable(GL_SCISSOR_TEST);
  glScissor(0, 0, viewport[2] / 2, viewport[3] / 3);  // the lower left
  clear(~id);
  glDisable(GL_SCISSOR_TEST);
}

inline Picture pattern_picture(std::uint32_t id, int width, int height) {
  Picture picture(width, height);
  picture.for_each([&](int x, int y) {
    const std::uint32_t colour = x < width / 2 && y < height / 3 ? ~id : id;
    for (int c = 0; c < 3; ++c) picture.pixel(x, y)[c] = static_cast<std::uint8_t>(colour >> 8 * c);
    picture.pixel(x, y)[3] = 255;
  });
  return picture;
}

// Every kind of surface sharing of the platform.
class LoopGLTest : public testing::TestWithParam<SurfaceSharing> {
 protected:
  void SetUp() override { choose_sharing(GetParam()); }
  ~LoopGLTest() override { EXPECT_EQ(sharing_faults(), std::vector<std::string>{}); }

  // A loop that draws patterns once each, and records what it draws and what it returns.
  std::unique_ptr<OpenGLControlLoop> make_recording_loop(std::uint32_t width, std::uint32_t height) {
    auto loop = std::make_unique<OpenGLControlLoop>(
        nullptr, nullptr, ErrorCallback([this](const char* message) { errors_.add(message); }));
    loop->set_rendering_callback(RenderingCallback([this](std::uint32_t id) {
      draw_pattern(id);
      drawn_.add(id);
    }));
    loop->set_image_ready_callback(image_ready([this](Index index, void*) { returned_.add(index); }));
    loop->set_mode(OpenGLControlLoop::once_each);
    loop->resize(width, height);
    return loop;
  }

  // Returns when a frame of this id has come, at some time.
  void await_returned(std::uint32_t id) {
    for (std::size_t count = 1;; ++count) {
      const auto ids = returned_.at_least(count);
      if (std::count(ids.begin(), ids.end(), id) > 0) return;
      ASSERT_GE(ids.size(), count) << id;
    }
  }

  Recorded<std::string> errors_;
  Recorded<std::uint32_t> drawn_;
  Recorded<std::uint32_t> returned_;
};

inline std::string sharing_name(const testing::TestParamInfo<SurfaceSharing>& info) {
  return info.param == SurfaceSharing::direct3d ? "Direct3D" : "HostMemory";
}

#define OCT_EVERY_SHARING(suite) \
  INSTANTIATE_TEST_SUITE_P(Hosting, suite, testing::ValuesIn(surface_sharings()), sharing_name)

}  // namespace oct::test
