// Start, stop and everything else from other threads, in every state, while the
// rendering thread draws or does not.
#include <algorithm>
#include <cstddef>
#include <random>
#include <thread>

#include "live/live_test.h"
#include "support/gl_spy.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

using std::chrono::microseconds;

// Waits at random.
void pause(std::mt19937& random, unsigned most_microseconds) {
  std::this_thread::sleep_for(microseconds(random() % most_microseconds));
}

class LiveThreadTest : public LiveTest {
 protected:
  // Draws while the threads work. No frame is of parts of two volumes.
  void draw_while(std::vector<std::function<void()>> work) {
    std::atomic<int> left = static_cast<int>(work.size());
    std::vector<std::thread> threads;
    for (auto& body : work) {
      threads.emplace_back([&left, body = std::move(body)] {
        body();
        --left;
      });
    }
    while (left > 0) draw_once();
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(torn_, 0);
    EXPECT_TRUE(client_errors.all().empty());
  }

  // A frame of every live renderer.
  void draw_once() {
    for (const LiveVolumeRenderingHandle live : lives_) {
      frame(24, 16, live);
      if (voxels_.empty()) continue;
      ++shown_;
      if (!uniform(voxels_)) ++torn_;
    }
  }

  std::vector<LiveVolumeRenderingHandle> lives_{live_};
  std::atomic<int> shown_ = 0;
  int torn_ = 0;
};

// Many at a time. Both kinds of sources take turns on a live renderer, each cleared while it runs.
TEST_F(LiveThreadTest, AThousandRestartsWhileDrawing) {
  std::vector<std::function<void()>> work;
  for (int k = 0; k < PatternDevice::devices; ++k) {
    if (k > 0) {
      lives_.push_back(createLiveRendering());
      setLiveVolumeRenderingRenderer(lives_.back(), renderer_);
    }
    work.emplace_back([this, k, live = lives_.back()] {
      std::mt19937 random(static_cast<unsigned>(k));
      LiveDataSourceHandle source = nullptr;
      for (int i = 0; i < 1000 / PatternDevice::devices + 1; ++i) {
        if (i % 8 == 0) {
          clearDataSource(source);
          const auto processing = device_.processing(k);
          source = i % 16 == 0 ? createOnlineDataSource(device_.device(k), processing)
                               : createOnlineDataSource_PS(device_.device(k), processing, processing,
                                                           device_.polarization());
          setErrorCallback(source, [](const char* text) { client_errors.add(text); });
          setOnlineAnalogInputConfiguration(source, i % 16 == 0);
          selectOnlineDataSource_PS(source, 7);
          setSizeZ(source, 1 + static_cast<int>(random() % 16));
        }
        startDataSource(live, source, device_.scan_pattern());
        pause(random, i % 8 == 0 ? 200'000 : 3000);
        if (i % 8 != 7) stopDataSource(source);
        if (i % 4 == 0) pause(random, 1000);
      }
      clearDataSource(source);
    });
  }
  draw_while(work);
  draw_once();
  EXPECT_GT(shown_, 10);
  EXPECT_GT(device_.volumes(), 100);  // most are stopped before their first one
  for (std::size_t k = 1; k < lives_.size(); ++k) clearLiveRendering(lives_[k]);
}

TEST_F(LiveThreadTest, RestartsWhileNobodyDraws) {
  make_source();
  std::mt19937 random(2);
  for (int i = 0; i < 1000; ++i) {
    if (i % 10 == 0) setSizeZ(source_, 1 + static_cast<int>(random() % 16));
    // Of another size, with the buffer of the one before still free and nobody rendering.
    if (i % 100 == 90) device_.set_size(48, 48, 48);
    if (i % 100 == 99) device_.set_size(16, 12, 10);
    start();
    pause(random, 400);
    if (i % 100 == 0) frame();  // so that some begin with an initialised renderer
    stopDataSource(source_);
    if (i % 70 == 0) frame();
  }
  start();
  EXPECT_TRUE(frames_until_shown());
  EXPECT_TRUE(uniform(voxels_));
  EXPECT_TRUE(client_errors.all().empty());
}

TEST_F(LiveThreadTest, SettersWhileRunning) {
  ToldVolumes told;
  make_polarization_source();
  selectOnlineDataSource_PS(source_, 7);
  start();
  // Until the first volume has been acquired the live renderer is stopped.
  while (!isLiveVolumeRunning(live_)) std::this_thread::sleep_for(microseconds(200));
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  const auto call_everything = [&] {
    for (int i = 0; i < 200 || (shown_ <= 20 && std::chrono::steady_clock::now() < end); ++i) {
      setOnlineAveraging_PS(source_, i, i, i, i), setOnlineDOPU_PS(source_, i, i, i, i);
      setOnlineDataThreshold_PS(source_, i, i % 2), selectOnlineDataSource_PS(source_, i % 2 ? 7 : 9);
      setSizeZ(source_, 1 + i % 16), setOnlineRefractiveIndex(source_, 1.0 + 0.01 * i);
      selectOnlineDataSource_Camera(source_, i % 2), setOnlineAnalogInputConfiguration(source_, false);
      setErrorCallback(
          source_, i % 2 ? nullptr : +[](const char* text) { client_errors.add(text); });
      setRefIntensityCallback(
          source_, i % 3 ? nullptr : +[](double value) { intensities.add(value); });
      i % 2 ? told.listen_to(source_) : setVolumeCallbackWithUser(source_, nullptr, nullptr);
      EXPECT_GE(getRefIntensity(source_), -1.0);
      EXPECT_EQ(getDataSourceError(source_, nullptr, 0), 0);
      int size = 0;
      getLiveVolumeRenderingSize(live_, &size, &size, &size);
      EXPECT_TRUE(isLiveVolumeRunning(live_));
      EXPECT_GE(getRenderedVolumesPerSec(live_), 0.0);
      setLiveVolumeRenderingRenderer(live_, renderer_);
      setRenderElements(renderer_, 1, i % 8 == 0), setAngles(renderer_, 0, 80 + i % 20);
      std::this_thread::sleep_for(microseconds(200));
    }
  };
  draw_while({call_everything, call_everything, call_everything, call_everything});
  EXPECT_GT(shown_, 20);
  stopDataSource(source_);
  EXPECT_FALSE(told.all().empty());
}

// ---- While the acquisition thread is somewhere in particular

// A source that nobody draws goes on measuring, and every volume is accounted for.
TEST_F(LiveThreadTest, WithoutFramesVolumesAreDroppedAndCounted) {
  const auto counts = [&] {
    std::pair<unsigned, unsigned> seen;
    getLiveVolumeCounts(live_, &seen.first, nullptr);
    getLiveVolumeCounts(live_, nullptr, &seen.second);
    return seen;
  };
  EXPECT_EQ(counts(), std::pair(0U, 0U));
  make_source();
  start();
  ASSERT_TRUE(frames_until_shown());
  const int before = device_.volumes();
  const unsigned dropped_before = counts().second;  // none unless the machine is busy
  const auto begin = std::chrono::steady_clock::now();
  while (device_.volumes() < before + 4) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  EXPECT_GT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(150))
      << "they were waited for";
  EXPECT_TRUE(frames_until([&] { return device_.volumes() > before + 8; }));
  EXPECT_TRUE(uniform(voxels_));
  stopDataSource(source_);
  const auto [drawn, dropped] = counts();
  EXPECT_GE(drawn, 2U);
  EXPECT_GE(dropped, dropped_before + 2);
  // One volume may lie in the buffer, and one may have come after the request to stop.
  EXPECT_GE(device_.volumes(), static_cast<int>(drawn + dropped));
  EXPECT_LE(device_.volumes(), static_cast<int>(drawn + dropped + 2));
  start();
  EXPECT_TRUE(frames_until([&, drawn = drawn] { return counts().first > drawn; })) << "goes on";
  getLiveVolumeCounts(live_, nullptr, nullptr);
  stopDataSource(source_);
  frame();
  OctLiveStatistics told{};
  told.size = sizeof told;
  getLiveStatistics(live_, &told);
  EXPECT_EQ(told.shown, counts().first);
  EXPECT_EQ(told.dropped_no_frame + told.dropped_by_driver, counts().second);
  const unsigned long long ended = told.shown + told.dropped_no_frame + told.dropped_withdrawn;
  EXPECT_LE(told.acquired - ended, 2U) << "each stop may have come between a volume and its way";
  EXPECT_LE(told.handed_over - told.shown, 2U);
  EXPECT_EQ(told.dropped_by_device, told.acquired) << "this device loses one before each volume";
  EXPECT_GT(told.volumes_per_second, 0.0);
  EXPECT_GT(told.latency_median_ms, 0.0);
  EXPECT_GE(told.latency_worst_ms, told.latency_median_ms);
  // A client of an older header: what it has no room for is left alone.
  OctLiveStatistics older{};
  older.size = offsetof(OctLiveStatistics, handed_over);
  older.handed_over = 77;
  getLiveStatistics(live_, &older);
  EXPECT_EQ(older.acquired, told.acquired);
  EXPECT_EQ(older.handed_over, 77U);
}

// Ranges and surfaces go to the volume renderer with each volume, and none of them waits for the frame.
TEST_F(LiveThreadTest, ALongFrameHoldsUpNoSource) {
  make_source();
  start();
  ASSERT_TRUE(frames_until_shown());
  setRenderElements(renderer_, 1, 1);
  int measured = 0;
  {
    GlSpy spy;
    spy.in_next("glClear", [&] {
      const int before = device_.volumes();
      const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
      while (measured < 4 && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        measured = device_.volumes() - before;
      }
    });
    frame();
  }
  EXPECT_GE(measured, 4);
  stopDataSource(source_);
  frame();
}

// A volume that does not come holds up a stop, as a stop waits for it, but no cancel.
TEST_F(LiveThreadTest, CancelWaitsForNoVolume) {
  for (const bool polarization : {false, true}) {
    for (const bool first : {true, false}) {
      polarization ? make_polarization_source() : make_source();
      if (first) device_.hold("getRawDataEx");
      EXPECT_FALSE(isDataSourceRunning(source_));
      start();
      EXPECT_TRUE(isDataSourceRunning(source_));
      if (!first) {
        ASSERT_TRUE(frames_until_shown());
        device_.hold("getRawDataEx");
      }
      ASSERT_TRUE(frames_until([&] { return device_.held(); }));
      cancelDataSource(source_);
      EXPECT_FALSE(isDataSourceRunning(source_));
      EXPECT_EQ(device_.objects(), 0);
      EXPECT_TRUE(client_errors.all().empty()) << "what was asked for is no error";
      start();
      EXPECT_TRUE(frames_until_shown());
      cancelDataSource(source_);  // while nobody waits
      cancelDataSource(source_);
      clearDataSource(std::exchange(source_, nullptr));
    }
  }
}

// A stop ends the wait for a buffer.
TEST_F(LiveThreadTest, StopWakesTheWaitingSource) {
  make_source();
  std::vector<std::chrono::steady_clock::duration> waits;
  for (int i = 0; i < 9; ++i) {
    start();
    ASSERT_TRUE(frames_until_shown());
    const int before = device_.volumes();
    while (device_.volumes() < before + 2) std::this_thread::sleep_for(microseconds(100));  // nobody draws
    const auto begin = std::chrono::steady_clock::now();
    stopDataSource(source_);
    waits.push_back(std::chrono::steady_clock::now() - begin);
  }
  std::sort(waits.begin(), waits.end());
  EXPECT_LT(waits[4], std::chrono::milliseconds(30));
}

// A client that takes its time with a volume holds up its source, not the frames; a stop waits for it.
TEST_F(LiveThreadTest, AVolumeCallbackThatBlocks) {
  struct Gate {
    std::atomic<bool> reached = false;
    std::atomic<bool> open = false;
  } gate;
  make_source();
  setVolumeCallbackWithUser(
      source_,
      [](const float*, int, int, int, unsigned long long, unsigned long long, void* user) {
        auto& here = *static_cast<Gate*>(user);
        here.reached = true;
        while (!here.open) std::this_thread::sleep_for(std::chrono::milliseconds(1));
      },
      &gate);
  start();
  ASSERT_TRUE(frames_until([&] { return gate.reached && !voxels_.empty(); }));
  const int volumes = device_.volumes();
  std::atomic<bool> stopped = false;
  std::thread stopping([&] { stopDataSource(source_), stopped = true; });
  for (int i = 0; i < 20; ++i) frame(), std::this_thread::sleep_for(std::chrono::milliseconds(1));
  EXPECT_FALSE(stopped);
  EXPECT_EQ(device_.volumes(), volumes);
  gate.open = true;
  stopping.join();
  EXPECT_EQ(device_.objects(), 0);
}

// What a source's own callback asks of it, it cannot wait for.
TEST_F(LiveThreadTest, CallbacksThatCallTheSource) {
  const std::pair<std::function<void()>, bool> calls[] = {
      {[this] { stopDataSource(source_); }, true},
      {[this] { clearDataSource(source_); }, true},
      {[this] { start(); }, false},
      {[this] { stopDataSource(source_), start(), clearDataSource(source_); }, true}};
  make_source();
  for (const bool error : {false, true}) {
    for (const auto& [call, ends] : calls) {
      std::string message;
      const auto action = [&, call = call] { call(), message = pending_error(); };
      on_intensity(error ? std::function<void()>() : action);
      on_error(error ? action : std::function<void()>());
      if (error) device_.fail("getRawDataEx", 3);
      const std::size_t before = client_errors.all().size();
      start();
      ASSERT_TRUE(frames_until(
          [&] { return error ? client_errors.all().size() > before : !intensities.all().empty(); }));
      if (ends) {
        ASSERT_TRUE(frames_until([&] { return device_.objects() == 0; }))
            << "the source was not asked to end";
      }
      stopDataSource(source_);
      EXPECT_NE(message, "(none)");
      while (pending_error() != "(none)") {
      }
      intensities.clear();
    }
  }
}

// A stop waits for the thread that it has asked to end, not for one that is started while it waits.
TEST_F(LiveThreadTest, StopWaitsForNoLaterStart) {
  make_source();
  for (int i = 0; i < 20; ++i) {
    device_.hold("stopMeasurement");
    start();
    ASSERT_TRUE(frames_until_shown());
    std::atomic<int> left = 4;
    std::vector<std::thread> threads;
    for (const bool stops : {true, true, false, true}) {
      threads.emplace_back([&, stops] { stops ? stopDataSource(source_) : start(), --left; });
      EXPECT_TRUE(frames_until([&] { return device_.held(); }));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(3));
    device_.release();
    EXPECT_TRUE(frames_until([&] { return left == 0; }));
    stopDataSource(source_);
    for (std::thread& thread : threads) thread.join();
  }
  // A start that finds a stop at work is refused.
  while (pending_error() != "(none)") {
  }
}

// A callback that waits for the live renderer's lock, a stop that waits for the callback, and a start that
// wants both: none waits for the other in a circle.
TEST_F(LiveThreadTest, StartsStopsAndCallbacksDoNotLockEachOther) {
  make_source();
  on_intensity([this] {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    isLiveVolumeRunning(live_);
    getRenderedVolumesPerSec(live_);
    startDataSource(live_, source_, device_.scan_pattern());
  });
  const auto many = [](unsigned seed, auto call) {
    return [seed, call] {
      std::mt19937 random(seed);
      for (int i = 0; i < 60; ++i) call(), pause(random, 2000);
    };
  };
  draw_while({many(5, [this] { start(); }), many(6, [this] { start(); }),
              many(7, [this] { stopDataSource(source_); }), many(8, [this] { stopDataSource(source_); })});
  stopDataSource(source_);
  std::string error;
  const std::string own_thread = std::make_error_code(std::errc::resource_deadlock_would_occur).message();
  while ((error = pending_error()) != "(none)") {
    const bool known = error == "BrennickDataSource already running" || error == own_thread;
    EXPECT_TRUE(known) << error;
  }
}

}  // namespace
}  // namespace oct::test
