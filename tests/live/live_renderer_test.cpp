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

void fill_of(LiveFeed& feed) {
  LiveDelivery delivery;
  delivery.processed = std::chrono::steady_clock::now();
  feed.fill(delivery);
}

class LiveRendererTest : public GLTest {
 protected:
  ~LiveRendererTest() override {
    feed_.stop(claim_);
    live_.render();
    EXPECT_EQ(spy_.live_objects(), 0U);
    EXPECT_EQ(spy_.calls("glMapBufferRange") - failed_maps_, spy_.calls("glUnmapBuffer"));
  }

  void start(const LiveFormat& format = {{4, 3, 2}}) { claim_ = feed_.start(format); }
  void run_it() {
    start();
    live_.render();
  }

  // A volume of one value, as a source writes it.
  void produce(float value) {
    float* const data = feed_.take(claim_);
    ASSERT_NE(data, nullptr);
    std::fill_n(data, 4 * 3 * 2, value);
    fill();
  }
  void fill() { fill_of(feed_); }
  LiveCounts counts() const { return feed_.counts(); }

  GlSpy spy_;
  int failed_maps_ = 0;
  FastOpenGLVolumeRenderer live_;
  LiveFeed& feed_ = *live_.feed();
  LiveClaim claim_ = no_claim;
};

constexpr std::size_t objects_of_a_running_renderer = 3;  // texture and two buffers

// Every event in every state, and the frame after it.
TEST_F(LiveRendererTest, EveryEventInEveryState) {
  using Action = std::function<void()>;
  struct NamedAction {
    const char* name;
    Action run;
    bool running;  // whether the renderer runs after a frame that follows
  };
  const Action begin = [&] { start(); };
  const Action draw = [&] { live_.render(); };
  const Action stop = [&] { feed_.stop(claim_); };
  const Action invalidate = [&] { feed_.invalidate(claim_); };
  const NamedAction states[] = {{"stopped", [] {}, false},
                                {"initialize", begin, true},
                                {"running", [&] { begin(), draw(); }, true},
                                {"de-initialize requested", [&] { begin(), draw(), stop(); }, false},
                                {"invalidated", [&] { begin(), invalidate(); }, true}};
  const NamedAction events[] = {{"start", begin, true},
                                {"invalidate", invalidate, true},
                                {"stop", stop, false},
                                {"nothing", {}, false}};
  for (const NamedAction& state : states) {
    for (const NamedAction& event : events) {
      SCOPED_TRACE(std::string(state.name) + ", " + event.name);
      claim_ = no_claim;
      state.run();
      // What has no claim, or no longer one, asks for nothing.
      const bool counts = event.run && (event.name == std::string("start") || state.running);
      if (event.run) event.run();
      EXPECT_EQ(live_.is_running(), counts || &state != states);
      live_.render();
      const bool running = counts ? event.running : state.running;
      EXPECT_EQ(live_.is_running(), running);
      EXPECT_EQ(spy_.live_objects(), running ? objects_of_a_running_renderer : 0U);
      EXPECT_EQ(feed_.wait_for_transition(claim_), running);
      EXPECT_EQ(feed_.take(claim_) != nullptr, running);
      feed_.give_back();
      stop(), live_.render();
      EXPECT_FALSE(live_.is_running());
    }
  }
}

TEST_F(LiveRendererTest, LogOfOneVolumeFromTheStartToTheEnd) {
  const std::string text = log_of([&] {
    FastOpenGLVolumeRenderer live;
    LiveFeed& feed = *live.feed();
    const LiveClaim claim = feed.start({{4, 3, 2}});
    feed.invalidate(claim);
    live.render();
    feed.take(claim);
    feed.take(claim);
    fill_of(feed);
    live.render();
    live.render();
    feed.stop(claim);
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

// One buffer at a time, each volume once, and a volume per frame.
TEST_F(LiveRendererTest, HandOver) {
  EXPECT_EQ(live_.get_fps(), 0.0);
  run_it();
  EXPECT_EQ(spy_.calls("glMapBufferRange"), 1);
  fill();  // without a buffer
  live_.render();
  EXPECT_EQ(spy_.calls("glUnmapBuffer"), 0);
  ASSERT_NE(feed_.take(claim_), nullptr);
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(feed_.take(claim_), nullptr) << "it was handed out already";
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(99));
  live_.render();
  EXPECT_EQ(spy_.calls("glUnmapBuffer"), 0) << "the source writes to it";
  feed_.give_back();
  for (int i = 1; i <= 6; ++i) {
    produce(static_cast<float>(i));
    live_.render();
    EXPECT_EQ(spy_.calls("glTexSubImage3D"), i + 1);  // the first by the allocation
    EXPECT_EQ(spy_.calls("glMapBufferRange"), i + 1) << "the other one";
    EXPECT_GT(live_.get_fps(), 0.0);
    if (i % 2 == 0) live_.render();
  }
  EXPECT_EQ(counts().shown, 6U);
  // Volumes per second of the wall clock: none of this time was worked.
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  produce(5.0F);
  live_.render();
  EXPECT_GT(live_.get_fps(), 0.0);
  EXPECT_LE(live_.get_fps(), 10.0);
}

// A frame does not wait for a driver that still reads the other buffer; a later one offers it.
TEST_F(LiveRendererTest, ABufferThatTheDriverReadsIsNotOffered) {
  run_it();
  static bool reading;
  static decltype(__glewClientWaitSync) wait;
  reading = true;
  wait = std::exchange(__glewClientWaitSync, [](GLsync fence, GLbitfield flags, GLuint64 time) -> GLenum {
    return reading ? GL_TIMEOUT_EXPIRED : wait(fence, flags, time);
  });
  for (int i = 1; i <= 3; ++i) {
    produce(1.0F);
    live_.render();
    if (i == 1) continue;  // the other buffer was never read
    EXPECT_EQ(spy_.calls("glMapBufferRange"), i);
    live_.render();
    EXPECT_EQ(spy_.calls("glMapBufferRange"), i);
    reading = false;
    live_.render();
    EXPECT_EQ(spy_.calls("glMapBufferRange"), i + 1);
    reading = true;
  }
  __glewClientWaitSync = wait;
}

// What becomes of every volume, and who hears of it.
TEST_F(LiveRendererTest, EveryVolumeIsAccountedFor) {
  const auto told = [&] {
    const LiveCounts all = counts();
    return std::vector<std::uint64_t>{all.acquired,         all.handed_over,       all.shown,
                                      all.dropped_no_frame, all.dropped_withdrawn, all.dropped_by_driver};
  };
  const auto expect = [&](std::vector<std::uint64_t> now) { EXPECT_EQ(told(), now); };
  run_it();
  feed_.count_acquired(claim_);
  produce(1.0F);
  expect({1, 1, 0, 0, 0, 0});
  live_.render();
  expect({1, 1, 1, 0, 0, 0});
  ASSERT_NE(feed_.take(claim_), nullptr);
  EXPECT_EQ(feed_.take(claim_), nullptr);
  expect({1, 1, 1, 1, 0, 0});
  fill();
  spy_.fail_next("glUnmapBuffer");
  live_.render();
  expect({1, 2, 1, 1, 0, 1});
  produce(1.0F);
  spy_.fail_next("glTexSubImage3D");  // one that is lost, and so is the one below, in another frame
  EXPECT_NE(failure_of([&] { live_.render(); }), "(none)");
  live_.render();
  expect({1, 3, 1, 1, 0, 2});
  produce(1.0F);
  feed_.stop(claim_);  // with a volume in the buffer
  live_.render();
  expect({1, 4, 1, 1, 1, 2});
  run_it();
  ASSERT_NE(feed_.take(claim_), nullptr);
  auto waiting = std::async(std::launch::async, [&] { return feed_.take(claim_); });
  std::this_thread::sleep_for(std::chrono::milliseconds(10));
  const LiveClaim old = claim_;
  start();  // another source
  EXPECT_EQ(waiting.get(), nullptr);
  feed_.count_acquired(old);
  EXPECT_EQ(feed_.take(old), nullptr);
  expect({1, 4, 1, 1, 2, 2});
  feed_.give_back();
  live_.render();
  // Latencies of the last thousand, by nearest rank.
  LiveStatistics statistics;
  const LiveTime begin{};
  for (int i = 1100; i >= 1; --i) statistics.show(begin, begin + std::chrono::milliseconds(i));
  EXPECT_NEAR(statistics.latency().median_ms, 500.0, 0.01);
  EXPECT_NEAR(statistics.latency().p99_ms, 990.0, 0.01);
  EXPECT_NEAR(statistics.latency().worst_ms, 1000.0, 0.01);
  EXPECT_EQ(statistics.volumes_per_second(begin + std::chrono::milliseconds(1200)), 800.0);
}

// The buffer that a source writes to stays mapped until it has done so, whoever wants it back.
TEST_F(LiveRendererTest, ACopyIsWaitedFor) {
  const std::pair<const char*, std::function<void(FastOpenGLVolumeRenderer*&)>> ends[] = {
      {"stop", [](auto*& live) { live->render(); }},
      {"another source",
       [](auto*& live) {
         live->feed()->start({{8, 8, 8}}), live->render();
       }},
      {"clear", [](auto*& live) { delete std::exchange(live, nullptr); }}};
  for (const auto& [name, end] : ends) {
    for (const bool fills : {false, true}) {
      SCOPED_TRACE(name);
      auto* live = new FastOpenGLVolumeRenderer;
      const auto feed = live->feed();
      const LiveClaim claim = feed->start({{4, 3, 2}});
      live->render();
      ASSERT_NE(feed->take(claim), nullptr);
      if (name == std::string("stop")) feed->stop(claim);
      std::atomic<bool> finished = false;
      auto source = std::async(std::launch::async, [&, fills = fills] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        finished = true;
        if (fills) return fill_of(*feed);
        feed->give_back();
      });
      end(live);
      EXPECT_TRUE(finished) << "the buffer was taken away";
      source.get();
      EXPECT_EQ(feed->counts().handed_over, 0U);
      EXPECT_EQ(feed->take(claim), nullptr);
      EXPECT_EQ(feed->is_gone(), live == nullptr);
      if (!live) {
        EXPECT_EQ(failure_of([&] { feed->start({}); }), "The live renderer of the source was cleared. ");
      }
      if (live) feed->stop(claim + 1), live->render();
      delete live;
    }
  }
  failed_maps_ =
      spy_.calls("glMapBufferRange") - spy_.calls("glUnmapBuffer");  // a deleted buffer is unmapped
}

TEST_F(LiveRendererTest, SizesWithoutVoxelsAndBeyondTheDriver) {
  start({{0, 8, 8}});
  live_.render();
  ASSERT_NE(feed_.take(claim_), nullptr);
  fill();
  live_.render();
  live_.render();
  EXPECT_TRUE(live_.is_running());
  EXPECT_EQ(failure_of([&] { start({{1, -1, 1}}); }), "Volume sizes must not be negative. ");
  constexpr int most = std::numeric_limits<int>::max();
  for (const VolumeExtent& extent : {VolumeExtent{2048, 1024, 1024}, VolumeExtent{most, most, most}}) {
    EXPECT_EQ(failure_of([&] { start({extent}); }), "The volume has too many voxels for live rendering. ");
  }
  EXPECT_EQ(feed_.extent(), (VolumeExtent{0, 8, 8}));
  start({{1'000'000, 1, 1}});
  for (int i = 0; i < 2; ++i) {
    EXPECT_TRUE(contains(failure_of([&] { live_.render(); }), "1000000 x 1 x 1 voxels is too large"));
    EXPECT_TRUE(contains(failure_of([&] { feed_.wait_for_transition(claim_); }), "is too large"));
  }
  EXPECT_TRUE(live_.is_running());
  EXPECT_EQ(spy_.live_objects(), 0U);
  run_it();
  produce(1.0F);
}

// A frame that fails to initialise tells whoever waits; the next one tries again.
TEST_F(LiveRendererTest, WhoWaitsHearsOfTheEnd) {
  start();
  const auto waiting = [&] {
    auto result = std::async(std::launch::async, [&, claim = claim_] {
      bool ready = false;
      const std::string failure = failure_of([&] { ready = feed_.wait_for_transition(claim); });
      return failure + (ready ? ", ready" : "");
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return result;
  };
  auto ready = waiting();
  live_.render();
  EXPECT_EQ(ready.get(), "(none), ready");
  feed_.invalidate(claim_);
  auto failed = waiting();
  spy_.fail_next("glTexImage3D");
  const std::string error = failure_of([&] { live_.render(); });
  EXPECT_NE(error, "(none)");
  EXPECT_EQ(failed.get(), error);
  live_.render();
  EXPECT_TRUE(feed_.wait_for_transition(claim_));
  feed_.invalidate(claim_);
  auto superseded = waiting();
  start();
  EXPECT_EQ(superseded.get(), "(none)");
  auto stopped = waiting();
  feed_.stop(claim_);
  EXPECT_EQ(stopped.get(), "(none)") << "without a rendering thread nobody else would release it";
}

// Requests that arrive while the rendering thread is at work are found in its next frame.
TEST_F(LiveRendererTest, ARequestDuringInitialisationIsNotOverwritten) {
  spy_.in_next("glMapBufferRange", [&] { feed_.stop(claim_); });
  run_it();
  EXPECT_TRUE(live_.is_running());
  live_.render();
  EXPECT_FALSE(live_.is_running());
  LiveClaim other = no_claim;
  spy_.in_next("glMapBufferRange", [&] { other = feed_.start({{7, 7, 7}}); });
  run_it();
  EXPECT_EQ(feed_.take(claim_), nullptr);
  live_.render();
  EXPECT_TRUE(feed_.wait_for_transition(other));
  feed_.stop(claim_);  // not its renderer any more
  float* const data = feed_.take(other);
  ASSERT_NE(data, nullptr);
  std::fill_n(data, 7 * 7 * 7, 0.0F);
  feed_.give_back();
  claim_ = other;
}

// A client deletes its context while volumes are shown, and goes on in another one.
TEST(LiveContextGLTest, NothingOfADeadContextIsTouched) {
  FastOpenGLVolumeRenderer live;
  LiveFeed& feed = *live.feed();
  LiveClaim claim = no_claim;
  const auto show = [&](int volumes) {
    claim = feed.start({{4, 3, 2}});
    live.render();
    for (int i = 0; i < volumes; ++i) {
      ASSERT_NE(feed.take(claim), nullptr);
      fill_of(feed);
      live.render();
    }
    feed.stop(claim);
  };
  for (const bool ends : {false, true}) {
    {
      const ClientContext gone;
      gl::forget_current_identity();
      show(3);
    }
    const ClientContext context;
    gl::forget_current_identity();
    const GlSpy spy;
    if (!ends) show(3);
    live.render();
    EXPECT_EQ(spy.calls("glUnmapBuffer"), ends ? 0 : 4);
    EXPECT_EQ(spy.live_objects(), ends ? 0U : 1U) << "the context's own mark";
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
  }
}

// With a volume renderer: what it is given, and a stop that comes while it draws.
TEST(LiveRendererDrawTest, GivesTheVolumeRendererItsTextures) {
  VolumeStage stage;
  auto& renderer = *reinterpret_cast<VolumeRenderer*>(stage.renderer);
  FastOpenGLVolumeRenderer live;
  live.set_renderer(&renderer);
  LiveDelivery delivery;
  std::vector<float>& secondary = delivery.secondary;
  secondary.assign(2 * 3 * 2, 0.5F);
  LiveFeed& feed = *live.feed();
  beginOffscreenFrame(stage.target, 20, 20);
  const LiveClaim claim = feed.start({{4, 3, 2}, 2});
  live.render();
  EXPECT_EQ(live.source().secondary_slice_count, 2);
  EXPECT_NE(live.source().secondary, 0U);
  live.render();
  EXPECT_EQ(live.source().volume, 0U) << "nothing has been uploaded";
  char why[200];
  EXPECT_EQ(explainFrame(stage.renderer, why, sizeof why), 1);
  EXPECT_TRUE(contains(why, "No live volume has come yet. ")) << why;
  float* const data = feed.take(claim);
  ASSERT_NE(data, nullptr);
  std::fill_n(data, 4 * 3 * 2, 0.25F);
  const std::vector<float> of_the_volume = secondary;
  feed.fill(delivery);
  secondary.assign(of_the_volume.size(), 0.75F);  // of the next one
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
  setRenderElements(stage.renderer, 1, 0);
  setVolumeMode(stage.renderer, 1);
  live.render();
  EXPECT_EQ(explainFrame(stage.renderer, why, sizeof why), 0) << why;
  OctPick pick{};
  pick.size = sizeof pick;
  EXPECT_EQ(pickVolume(stage.renderer, 10, 10, &pick), OCT_PICK_VOLUME);
  EXPECT_EQ(pick.value, 0.25F);
  GlSpy spy;
  spy.in_next("glClear", [&] { feed.stop(claim); });
  live.render();
  EXPECT_FALSE(live.is_running());
  EXPECT_EQ(live.source().volume, 0U);
  EXPECT_EQ(live.source().secondary, 0U);
  EXPECT_EQ(live.source().secondary_slice_count, 0);
  EXPECT_EQ(pickVolume(stage.renderer, 10, 10, &pick), OCT_PICK_NOTHING);
  EXPECT_EQ(pending_error(), "The volume has changed since the last frame. Draw a frame before picking. ");
  finishOffscreenFrame(stage.target, nullptr);
  EXPECT_EQ(pending_error(), "(none)");
}

TEST_F(LiveRendererTest, WithoutAContextAFrameFails) {
  FastOpenGLVolumeRenderer live;
  std::async(std::launch::async, [&] {
    live.render();  // stopped: nothing to do
    live.feed()->start({{4, 3, 2}});
    EXPECT_EQ(failure_of([&] { live.render(); }), "No OpenGL context is current on the calling thread. ");
  }).get();
  EXPECT_TRUE(live.is_running());
}

// ---- Faults

// The next frame tries again; here it is what the errors say.
TEST_F(LiveRendererTest, WhatFailsTellsItsPlace) {
  const auto at = [&](const std::string& place, const std::function<void()>& arrange) {
    arrange();
    const std::string error = failure_of([&] { live_.render(); });
    EXPECT_TRUE(error.starts_with("An OpenGL error in FastOpenGLVolumeRenderer::" + place + " occured: "))
        << error;
    live_.render();
  };
  at("close", [&] { start(), spy_.queue_error(GL_INVALID_VALUE); });
  at("initialize", [&] { feed_.invalidate(claim_), spy_.fail_next("glTexImage3D"); });
  at("initialize", [&] { feed_.invalidate(claim_), spy_.fail_next("glBufferData"); });
  at("render", [&] { spy_.queue_error(GL_INVALID_OPERATION); });
  produce(1.0F);
  at("render, do_update", [&] { spy_.fail_next("glTexSubImage3D"); });
  produce(2.0F);
  at("render, other", [&] { spy_.in_next("glMapBufferRange", [&] { spy_.queue_error(GL_INVALID_ENUM); }); });

  produce(3.0F);
  spy_.fail_next("glMapBufferRange");
  failed_maps_ = 1;
  const std::string text =
      log_of([&] { EXPECT_EQ(failure_of([&] { live_.render(); }), "This is an error."); });
  EXPECT_TRUE(contains(text, "Invalid Ptr...\nPtr is invalid. \n")) << text;
  live_.render();
  produce(4.0F);
  live_.render();
  // Without fences the driver looks for itself whether a buffer is in use.
  spy_.fail_next("glFenceSync", 2);
  for (int i = 0; i < 4; ++i) produce(5.0F), live_.render();
  EXPECT_EQ(counts().shown, 7U);
  at("close", [&] { feed_.stop(claim_), spy_.queue_error(GL_INVALID_VALUE); });
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
  LiveFeed& feed = *live.feed();
  LiveClaim claim = no_claim;
  const auto draw = [&] {
    claim = feed.start({{14, 12, 10}});
    renderVolume(handle);  // allocates
    float* const data = feed.take(claim);
    ASSERT_NE(data, nullptr);
    std::copy(scene.volume.voxels.begin(), scene.volume.voxels.end(), data);
    fill_of(feed);
    renderVolume(handle);  // uploads
  };
  Picture good(80, 60);
  beginOffscreenFrame(stage.target, 80, 60);
  draw();
  finishOffscreenFrame(stage.target, good.bytes.data());
  scene.border = true;
  EXPECT_TRUE(agree(good, reference_picture(scene), {1, 0.99, 255}));
  expect_same_whatever_the_client_sets(stage.target, good, draw);
  feed.stop(claim);
  renderVolume(handle);
  clearLiveRendering(handle);
  EXPECT_EQ(pending_error(), "(none)");
}

}  // namespace
}  // namespace oct::test
