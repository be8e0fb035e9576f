// A live renderer with a context, whose event does what a test asks for.
#pragma once

#include <functional>
#include <vector>

#include "live/fast_opengl_volume_renderer.h"
#include "support/gl_spy.h"
#include "support/test_context.h"

namespace oct::test {

struct EventScript {
  bool refuse_set = false;
  std::function<void()> on_set;
};

class ScriptedEvent : public ManualResetEvent {
 public:
  explicit ScriptedEvent(EventScript& script) : script_(script) {}
  bool set() override {
    if (script_.on_set) script_.on_set();
    return !script_.refuse_set && event_->set();
  }
  bool reset() override { return event_->reset(); }
  bool wait(std::chrono::milliseconds timeout) override { return event_->wait(timeout); }

 private:
  EventScript& script_;
  std::unique_ptr<ManualResetEvent> event_ = ManualResetEvent::create();
};

class LiveRendererTest : public GLTest {
 protected:
  LiveRendererTest() { live_.set_size({4, 3, 2}); }
  ~LiveRendererTest() override {
    script_ = {};
    live_.stop();
    live_.render();
    EXPECT_EQ(spy_.live_objects(), 0U);
    EXPECT_EQ(spy_.calls("glMapBuffer") - failed_maps_, spy_.calls("glUnmapBuffer"));
  }

  void run_it() {
    live_.start();
    live_.render();
  }

  // A volume of one value, as a producer writes it.
  void produce(float value) {
    float* const data = live_.get_data_ptr();
    ASSERT_NE(data, nullptr);
    std::fill_n(data, 4 * 3 * 2, value);
    live_.update();
  }

  GlSpy spy_;
  int failed_maps_ = 0;
  EventScript script_;
  FastOpenGLVolumeRenderer live_{std::make_unique<ScriptedEvent>(script_)};
};

}  // namespace oct::test
