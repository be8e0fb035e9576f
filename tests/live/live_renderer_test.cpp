// The states of the live renderer and their edges, and what fails on the way.
#include <algorithm>
#include <chrono>
#include <future>
#include <limits>

#include "live/fast_opengl_volume_renderer.h"
#include "support/gl_spy.h"
#include "support/opengl/foreign_state.h"
#include "support/reference/volume_reference.h"
#include "support/test_context.h"
#include "support/volume_scene.h"
#include "volume/volume_renderer.h"

namespace oct::test {
namespace {

// Does what a test asks for.
class ScriptedEvent : public ManualResetEvent {
 public:
  bool set() override {
    if (on_set) on_set();
    return !refuse_set && event_->set();
  }
  bool reset() override { return event_->reset(); }
  bool wait(std::chrono::milliseconds timeout) override { return event_->wait(timeout); }

  bool refuse_set = false;
  std::function<void()> on_set;

 private:
  std::unique_ptr<ManualResetEvent> event_ = ManualResetEvent::create();
};

class LiveRendererTest : public GLTest {
 protected:
  LiveRendererTest() { live_.set_size({4, 3, 2}); }
  ~LiveRendererTest() override {
    script_.refuse_set = false;
    script_.on_set = nullptr;
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
  ScriptedEvent& script_ = *new ScriptedEvent;
  FastOpenGLVolumeRenderer live_{std::unique_ptr<ManualResetEvent>(&script_)};
};

constexpr std::size_t objects_of_a_running_renderer = 3;  // texture and two buffers

using Action = std::function<void(FastOpenGLVolumeRenderer&)>;

struct NamedAction {
  const char* name;
  Action run;
  bool running;  // whether the renderer runs after a frame that follows
};

// Every event in every state, and the frame after it.
TEST_F(LiveRendererTest, EveryEventInEveryState) {
  const Action start = [](auto& live) { live.start(); };
  const Action render = [](auto& live) { live.render(); };
  const Action stop = [](auto& live) { live.stop(); };
  const Action invalidate = [](auto& live) { live.invalidate(); };
  const NamedAction states[] = {
      {"stopped", [](auto&) {}, false},
      {"initialize", start, true},
      {"running", [&](auto& live) { start(live), render(live); }, true},
      {"de-initialize requested", [&](auto& live) { start(live), render(live), stop(live); }, false},
      {"invalidated", invalidate, true}};
  const NamedAction events[] = {{"start", start, true},
                                {"invalidate", invalidate, true},
                                {"stop", stop, false},
                                {"nothing", {}, false}};
  for (const NamedAction& state : states) {
    for (const NamedAction& event : events) {
      FastOpenGLVolumeRenderer live;
      live.set_size({2, 2, 2});
      SCOPED_TRACE(std::string(state.name) + ", " + event.name);
      state.run(live);
      if (event.run) event.run(live);
      EXPECT_EQ(live.is_running(), event.run || &state != states);
      live.render();
      const bool running = event.run ? event.running : state.running;
      EXPECT_EQ(live.is_running(), running);
      EXPECT_EQ(spy_.live_objects(), running ? objects_of_a_running_renderer : 0U);
      if (event.run) live.wait_for_transition();
      EXPECT_EQ(live.get_data_ptr() != nullptr, running);
      live.discard();
      stop(live), render(live);
      EXPECT_FALSE(live.is_running());
    }
  }
  EXPECT_EQ(spy_.live_objects(), 0U);
}

TEST_F(LiveRendererTest, LogOfOneVolumeFromTheStartToTheEnd) {
  const std::string text = log_of([&] {
    FastOpenGLVolumeRenderer live;
    live.set_size({4, 3, 2});
    live.start();
    live.invalidate();
    live.render();
    live.get_data_ptr();
    live.get_data_ptr();
    live.update();
    live.render();
    live.render();
    live.render();
    live.stop();
    live.render();
    live.render();
  });
  EXPECT_EQ(text, R"(FastOpenGLVolumeRenderer: OpenGLVolumeRenderer constructor called. 
FastOpenGLVolumeRenderer::set_size: 4 x 3 x 2
Start called
Invalidate called, size_z = 2
FastOpenGLVolumeRenderer::close(): ResetEvent
Closing renderer. 
Initializing with sizes: 4 x 3 x 2
FastOpenGLVolumeRenderer::get_data_ptr(): ResetEvent
FastOpenGLVolumeRenderer::get_data_ptr(): WAIT_TIMEOUT on ptr_event
FastOpenGLVolumeRenderer::update()
Rendering: 
FastOpenGLVolumeRenderer::render(): Updating data...  
FastOpenGLVolumeRenderer::render(): ptr invalidated. 
Rendering: 
Invalid Ptr...
Set event succeeded. (render function) 
Rendering: 
Stop called
De-Initializing!
FastOpenGLVolumeRenderer::close(): ResetEvent
Closing renderer. 
~FastOpenGLVolumeRenderer
)");
}

// One buffer at a time, and each volume once.
TEST_F(LiveRendererTest, HandOver) {
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(live_.get_data_ptr(), nullptr) << "nobody renders";
  const auto waited = std::chrono::steady_clock::now() - begin;
  EXPECT_GE(waited, std::chrono::milliseconds(99));
  EXPECT_EQ(live_.get_fps(), 0.0);
  run_it();
  EXPECT_EQ(spy_.calls("glMapBuffer"), 1);
  live_.update();  // without a buffer
  live_.render();
  EXPECT_EQ(spy_.calls("glUnmapBuffer"), 0);
  ASSERT_NE(live_.get_data_ptr(), nullptr);
  EXPECT_EQ(live_.get_data_ptr(), nullptr) << "it was handed out already";
  live_.render();
  EXPECT_EQ(spy_.calls("glUnmapBuffer"), 0) << "the producer writes to it";
  live_.discard();
  for (int i = 1; i <= 4; ++i) {
    const int uploads = spy_.calls("glTexSubImage3D");
    produce(static_cast<float>(i));
    EXPECT_EQ(live_.get_data_ptr(), nullptr) << "it waits to be taken";
    live_.render();
    EXPECT_EQ(spy_.calls("glTexSubImage3D"), uploads + 1);
    EXPECT_EQ(spy_.calls("glMapBuffer"), i) << "the other one is mapped in the next frame";
    EXPECT_GT(live_.get_fps(), 0.0);
    live_.render();
    live_.render();
    EXPECT_EQ(spy_.calls("glMapBuffer"), i + 1);
    EXPECT_EQ(spy_.calls("glTexSubImage3D"), uploads + 1);
  }
  // Volumes per second of the wall clock: none of this time was worked.
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  produce(5.0F);
  live_.render();
  EXPECT_GT(live_.get_fps(), 0.0);
  EXPECT_LE(live_.get_fps(), 10.0);
  live_.stop();
  live_.render();
  EXPECT_EQ(live_.get_data_ptr(), nullptr);
}

TEST_F(LiveRendererTest, SizesHoldFromTheNextInitialisation) {
  run_it();
  live_.set_size({5, 6, 7});
  EXPECT_EQ(live_.get_size(), (VolumeExtent{5, 6, 7}));
  EXPECT_EQ(live_.get_data_ptr(), nullptr) << "the buffer is one of the size before";
  live_.invalidate();
  live_.render();
  float* const data = live_.get_data_ptr();
  ASSERT_NE(data, nullptr);
  std::fill_n(data, 5 * 6 * 7, 1.0F);
  live_.discard();
  EXPECT_EQ(failure_of([&] { live_.set_size({1, -1, 1}); }), "Volume sizes must not be negative. ");
  constexpr int most = std::numeric_limits<int>::max();
  for (const VolumeExtent& extent : {VolumeExtent{2048, 1024, 1024}, VolumeExtent{most, most, most}}) {
    EXPECT_EQ(failure_of([&] { live_.set_size(extent); }),
              "The volume has too many voxels for live rendering. ");
  }
  EXPECT_EQ(live_.get_size(), (VolumeExtent{5, 6, 7}));
}

TEST_F(LiveRendererTest, SizesWithoutVoxelsAndBeyondTheDriver) {
  live_.set_size({0, 8, 8});
  run_it();
  ASSERT_NE(live_.get_data_ptr(), nullptr);
  live_.update();
  live_.render();
  live_.render();
  EXPECT_TRUE(live_.is_running());
  live_.set_size({1'000'000, 1, 1});
  live_.invalidate();
  for (int i = 0; i < 2; ++i) {
    EXPECT_NE(failure_of([&] { live_.render(); }).find("1000000 x 1 x 1 voxels is too large"),
              std::string::npos);
  }
  EXPECT_TRUE(live_.is_running());
  EXPECT_EQ(spy_.live_objects(), 0U);
  live_.set_size({4, 3, 2});
  live_.render();
  produce(1.0F);
}

// ---- Who waits for a transition

TEST_F(LiveRendererTest, WaitingForATransition) {
  const auto waiting = [&] {
    return std::async(std::launch::async, [&] { return failure_of([&] { live_.wait_for_transition(); }); });
  };
  const auto pause = [] { std::this_thread::sleep_for(std::chrono::milliseconds(20)); };
  live_.start();
  auto first = waiting();
  pause();
  EXPECT_NE(failure_of([&] { live_.wait_for_transition(); }).find("retrieved"), std::string::npos);
  live_.render();
  EXPECT_EQ(first.get(), "(none)");

  live_.invalidate();
  auto abandoned = waiting();
  pause();
  live_.start();
  EXPECT_NE(abandoned.get(), "(none)") << "a newer request breaks the promise";
  auto stopped = waiting();
  pause();
  live_.stop();
  EXPECT_EQ(stopped.get(), "(none)") << "without a rendering thread nobody else would release it";
}

// Requests that arrive while the rendering thread is at work are found in its next frame.
TEST_F(LiveRendererTest, ARequestDuringInitialisationIsNotOverwritten) {
  script_.on_set = [&] { live_.stop(); };
  run_it();
  EXPECT_TRUE(live_.is_running());
  script_.on_set = nullptr;
  live_.render();
  EXPECT_FALSE(live_.is_running());
  script_.on_set = [&] {
    script_.on_set = nullptr;
    live_.set_size({7, 7, 7});
    live_.invalidate();
  };
  run_it();
  live_.render();
  live_.wait_for_transition();
  float* const data = live_.get_data_ptr();
  ASSERT_NE(data, nullptr);
  std::fill_n(data, 7 * 7 * 7, 0.0F);
  live_.discard();
}

// With a volume renderer: what it is given, and a stop that comes while it draws.
TEST(LiveRendererDrawTest, GivesTheVolumeRendererItsTextures) {
  VolumeStage stage;
  auto& renderer = *reinterpret_cast<VolumeRenderer*>(stage.renderer);
  FastOpenGLVolumeRenderer live;
  live.set_renderer(&renderer);
  std::vector<float> secondary(2 * 3 * 2, 0.5F);
  live.set_size({4, 3, 2});
  live.set_secondary_data(secondary.data(), 2);
  beginOffscreenFrame(stage.target, 20, 20);
  live.start();
  live.render();
  EXPECT_EQ(live.source().secondary_slice_count, 2);
  EXPECT_NE(live.source().secondary, 0U);
  live.render();
  EXPECT_EQ(live.source().volume, 0U) << "nothing has been uploaded";
  float* const data = live.get_data_ptr();
  ASSERT_NE(data, nullptr);
  std::fill_n(data, 4 * 3 * 2, 0.25F);
  live.update();
  const std::vector<float> of_the_volume = secondary;
  std::fill(secondary.begin(), secondary.end(), 0.75F);  // of the next one
  live.render();
  glBindTexture(GL_TEXTURE_3D, live.source().secondary);
  glGetTexImage(GL_TEXTURE_3D, 0, GL_RED, GL_FLOAT, secondary.data());
  EXPECT_EQ(secondary, of_the_volume);
  ASSERT_NE(live.source().volume, 0U);
  const std::uint64_t revision = live.source().volume_revisions->newest();
  EXPECT_EQ(live.source().slice_count, 3);
  EXPECT_EQ(live.source().filled_fraction, 1.0F);
  for (int i = 0; i < 3; ++i) live.render();
  EXPECT_EQ(live.source().volume_revisions->newest(), revision);
  GlSpy spy;
  spy.in_next("glClear", [&] { live.stop(); });
  live.render();
  EXPECT_FALSE(live.is_running());
  EXPECT_EQ(live.source().volume, 0U);
  EXPECT_EQ(live.source().secondary, 0U);
  EXPECT_EQ(live.source().secondary_slice_count, 0);
  finishOffscreenFrame(stage.target, nullptr);
  EXPECT_EQ(pending_error(), "(none)");
}

TEST_F(LiveRendererTest, WithoutAContextAFrameFails) {
  FastOpenGLVolumeRenderer live;
  std::async(std::launch::async, [&] {
    live.render();  // stopped: nothing to do
    live.start();
    EXPECT_EQ(failure_of([&] { live.render(); }), "No OpenGL context is current on the calling thread. ");
  }).get();
  EXPECT_TRUE(live.is_running());
}

// ---- Faults

// What the action throws, and what is logged of it.
void expect_failure(const std::string& error, const std::string& line, const std::function<void()>& action) {
  const std::string text = log_of([&] { EXPECT_EQ(failure_of(action), error); });
  EXPECT_TRUE(contains(text, line)) << text;
}

// The next frame tries again and whoever waits gets its turn; here it is what the errors say.
TEST_F(LiveRendererTest, WhatFailsTellsItsPlace) {
  const auto at = [&](const std::string& place, const std::function<void()>& arrange) {
    arrange();
    const std::string error = failure_of([&] { live_.render(); });
    EXPECT_TRUE(error.starts_with("An OpenGL error in FastOpenGLVolumeRenderer::" + place + " occured: "))
        << error;
    live_.render();
  };
  at("close", [&] { live_.start(), spy_.queue_error(GL_INVALID_VALUE); });
  at("initialize", [&] { live_.invalidate(), spy_.fail_next("glTexImage3D"); });
  at("initialize", [&] { live_.invalidate(), spy_.fail_next("glBufferData"); });
  at("render", [&] { spy_.queue_error(GL_INVALID_OPERATION); });
  produce(1.0F);
  at("render, do_update", [&] { spy_.fail_next("glTexSubImage3D"); });
  produce(2.0F);
  live_.render();
  at("render, other",
     [&] { script_.on_set = [&] { script_.on_set = nullptr, spy_.queue_error(GL_INVALID_ENUM); }; });

  produce(3.0F);
  const int uploads = spy_.calls("glTexSubImage3D");
  const auto [drawn, dropped] = live_.get_counts();
  spy_.fail_next("glUnmapBuffer");
  live_.render();
  EXPECT_EQ(spy_.calls("glTexSubImage3D"), uploads) << "a lost volume is not shown";
  EXPECT_EQ(live_.get_counts().drawn, drawn);
  EXPECT_EQ(live_.get_counts().dropped, dropped + 1);
  spy_.fail_next("glMapBuffer");
  failed_maps_ = 1;
  expect_failure("This is an error.", "Invalid Ptr...\nPtr is invalid. \n", [&] { live_.render(); });
  live_.render();
  produce(4.0F);
  live_.render();
  script_.refuse_set = true;
  expect_failure("This is an error.", "Invalid Ptr...\nCould not set event. \n", [&] { live_.render(); });
  live_.invalidate();
  testing::internal::CaptureStderr();
  expect_failure("Could not set event", "FastOpenGLVolumeRenderer::initialize(): SetEvent failed. \n",
                 [&] { live_.render(); });
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Could not set event.\n");
  script_.refuse_set = false;
  live_.render();
  live_.wait_for_transition();
  produce(5.0F);
  expect_failure("Could not create event.", "Could not create event.\n",
                 [] { const FastOpenGLVolumeRenderer refused(nullptr); });
  at("close", [&] { live_.stop(), spy_.queue_error(GL_INVALID_VALUE); });
  EXPECT_FALSE(live_.is_running());
}

TEST(LiveRendererExportTest, NothingThatTheClientSetShowsOrChanges) {
  VolumeStage stage;
  VolumeScene scene = scene_of(test_volume(14, 12, 10), 80, 60, 20.0, 40.0);
  scene.mode = 1;
  apply(scene, stage.renderer);
  setRenderElements(stage.renderer, 1, 0);
  setRange(stage.renderer, 1.0, 1.0, 1.0);
  const LiveVolumeRenderingHandle handle = createLiveRendering();
  setLiveVolumeRenderingRenderer(handle, stage.renderer);
  auto& live = *reinterpret_cast<FastOpenGLVolumeRenderer*>(handle);
  live.set_size({14, 12, 10});
  const auto draw = [&] {
    live.invalidate();
    renderVolume(handle);  // allocates
    float* const data = live.get_data_ptr();
    ASSERT_NE(data, nullptr);
    std::copy(scene.volume.voxels.begin(), scene.volume.voxels.end(), data);
    live.update();
    renderVolume(handle);  // uploads
  };
  Picture good(80, 60);
  beginOffscreenFrame(stage.target, 80, 60);
  draw();
  finishOffscreenFrame(stage.target, good.bytes.data());
  scene.border = true;
  EXPECT_TRUE(agree(good, reference_picture(scene), {1, 0.99, 255}));
  expect_same_whatever_the_client_sets(stage.target, good, draw);
  live.stop();
  renderVolume(handle);
  clearLiveRendering(handle);
  EXPECT_EQ(pending_error(), "(none)");
}

}  // namespace
}  // namespace oct::test
