// Everything goes wrong at random: the device fails, hangs, is unplugged and changes its size, while a client starts,
// stops and replaces sources and renderers. Nothing leaks, nothing hangs, and every picture is one volume.
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "simulator/device_objects.h"
#include "soak/dice.h"
#include "support/gl_spy.h"
#include "support/process_memory.h"
#include "support/test_context.h"
#include "support/volume_scene.h"

namespace oct::test {
namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

// A decibel value for every entry, which nothing mixes with its neighbours.
constexpr int entries = 51;
const std::vector<std::uint32_t> palette = [] {
  std::vector<std::uint32_t> colors;
  for (unsigned i = 0; i < entries; ++i)
    colors.push_back(0xFF000000U | (i * 50U % 256U) << 16U | (255U - 5U * i) << 8U | (40U + 4U * i));
  return colors;
}();

// Plays volumes that are of one value each.
class ConstantVolumes : public simulator::test::Scan {
 public:
  ConstantVolumes(int size1, int size2, int size3, const std::array<float, 4>& values)
      : Scan(playback(size1, size2, size3, values), size2, size3, 1.0, 1.0), values_(values) {
    setSimulatedScanRate(device, 60.0 * size2 * size3, OCT_PACING_REAL_TIME);
  }

  bool shows(const std::array<int, 4>& bgra) const {
    return std::any_of(values_.begin(), values_.end(), [&](float value) {
      const std::uint32_t color = palette[static_cast<std::size_t>(value)];
      const std::array<int, 3> wanted{static_cast<int>(color >> 16U & 255U),
                                      static_cast<int>(color >> 8U & 255U), static_cast<int>(color & 255U)};
      return std::equal(wanted.begin(), wanted.end(), bgra.begin(),
                        [](int a, int b) { return std::abs(a - b) <= 1; });
    });
  }

 private:
  static OCTDeviceHandle playback(int size1, int size2, int size3, const std::array<float, 4>& values) {
    const auto voxels = static_cast<std::size_t>(size1 * size2 * size3);
    std::vector<float> samples;
    for (const float value : values) samples.insert(samples.end(), voxels, value);
    return createSimulatedPlayback(samples.data(), size1, size2, size3, 4, 1.0, 1.0, 1.0, 0.0, 1);
  }

  const std::array<float, 4> values_;
};

constexpr unsigned width = 64;
constexpr unsigned height = 48;

// Two sources of one view, and one of a device that measures with a view of its own.
class RoughClient {
 public:
  explicit RoughClient(unsigned seed) : seed_(seed) {
    for (View& view : views_) {
      initialize(view);
      setVolumeMode(view.stage.renderer, 1);
      setRenderBackground(view.stage.renderer, 0x000000FFU, 0x000000FFU);
      setBorder(view.stage.renderer, 0, 0, 0);
      setRenderElements(view.stage.renderer, 1, 0);
      make_live(view);
    }
    for (std::size_t i = 0; i < sources_.size(); ++i) make_source(i);
    setSimulatedMotion(phantom_.device, OCT_MOTION_DRIFT, 0.1, 1.0);
    setSimulatedScanRate(phantom_.device, 20'000.0, OCT_PACING_REAL_TIME);
  }
  ~RoughClient() {
    rest();
    for (const LiveDataSourceHandle source : sources_) clearDataSource(source);
    for (View& view : views_) {
      frame(view);
      clearLiveRendering(view.live);
    }
    clearSimulatedScanPattern(small_);
    pending_error();
  }

  // Both sides do what they like for a while.
  void storm(Seconds length) {
    std::atomic<bool> running{true};
    std::thread user([&] {
      Dice dice(seed_++);
      while (running) {
        user_step(dice);
        std::this_thread::sleep_for(std::chrono::milliseconds(dice.below(30)));
      }
    });
    // A call that hangs holds up whoever waits for it.
    std::atomic<bool> plugged{true};
    std::thread cable([&] {
      for (; plugged; std::this_thread::sleep_for(std::chrono::milliseconds(100))) releaseSimulatedCalls();
    });
    Dice dice(seed_++);
    for (const auto end = Clock::now() + length; Clock::now() < end; ++steps_) {
      for (View& view : views_) frame(view);
      if (dice.below(20) == 0) replace(dice);
      std::this_thread::sleep_for(std::chrono::milliseconds(8));
    }
    running = false;
    user.join();
    plugged = false;
    cable.join();
    rest();
  }

  // After all that the view shows what its source measures; else what is known of it.
  testing::AssertionResult shows_volumes_again() {
    static std::mutex mutex;
    static std::string errors;
    setErrorCallback(sources_[0], [](const char* message) {
      const std::lock_guard lock(mutex);
      errors += message;
    });
    for (std::array<char, 200> text{}; getError(text.data(), 200) != 0;)
      continue;  // of this client's own calls
    startDataSource(views_[0].live, sources_[0], first_.pattern);
    const std::string refused = pending_error();
    const auto end = Clock::now() + Seconds(20.0);
    bool shown = false;
    while (!shown && Clock::now() < end) shown = first_.shows(frame(views_[0]).bgra(width / 2, height / 2));
    OctLiveStatistics counts{};
    counts.size = sizeof counts;
    getLiveStatistics(views_[0].live, &counts);
    const bool running = isDataSourceRunning(sources_[0]);
    rest();
    setErrorCallback(sources_[0], [](const char*) {});
    if (shown) return testing::AssertionSuccess();
    const std::lock_guard lock(mutex);
    return testing::AssertionFailure()
           << "start: " << refused << ", errors: " << errors << ", running: " << running << ", acquired "
           << counts.acquired << ", handed over " << counts.handed_over << ", shown " << counts.shown
           << ", no frame " << counts.dropped_no_frame << ", withdrawn " << counts.dropped_withdrawn;
  }

  // OpenGL objects of renderers that have nothing to draw with.
  std::size_t idle_objects(const GlSpy& spy) {
    for (View& view : views_) {
      beginOffscreenFrame(view.stage.target, width, height);
      uninitializeVolumeRenderer(view.stage.renderer);
      finishOffscreenFrame(view.stage.target, nullptr);
    }
    const std::size_t objects = spy.live_objects();
    for (View& view : views_) initialize(view);
    return objects;
  }

  int steps() const { return steps_; }
  int mixed() const { return mixed_; }
  int pictures() const { return pictures_; }

 private:
  struct View {
    VolumeStage stage;
    LiveVolumeRenderingHandle live = nullptr;
  };

  void make_live(View& view) {
    view.live = createLiveRendering();
    setLiveVolumeRenderingRenderer(view.live, view.stage.renderer);
  }

  // Anew where it was initialised before.
  static void initialize(View& view) {
    beginOffscreenFrame(view.stage.target, width, height);
    uninitializeVolumeRenderer(view.stage.renderer);
    initializeVolumeRenderer(view.stage.renderer);
    finishOffscreenFrame(view.stage.target, nullptr);
    setRendererColormap(view.stage.renderer, palette.data(), entries);
    setRendererColoringBoundaries(view.stage.renderer, -0.5, entries - 0.5);
  }

  void make_source(std::size_t i) {
    ConstantVolumes* const players[] = {&first_, &second_};
    sources_[i] = i < 2 ? createOnlineDataSource(players[i]->device, players[i]->processing)
                        : createOnlineDataSource(phantom_.device, phantom_.processing);
    setErrorCallback(sources_[i], [](const char*) {});
  }

  ScanPatternHandle pattern(std::size_t i) const {
    return i == 0 ? first_.pattern : i == 1 ? second_.pattern : phantom_.pattern;
  }

  void user_step(Dice& dice) {
    const auto i = static_cast<std::size_t>(dice.below(3));
    switch (dice.below(12)) {
      case 0:
      case 1:
      case 2: {
        const std::lock_guard lock(live_mutex_);
        startDataSource(views_[i / 2].live, sources_[i], pattern(i));
        break;
      }
      case 3:
        return stopDataSource(sources_[i]);
      case 4:
        return cancelDataSource(sources_[i]);
      case 5:
        clearDataSource(sources_[i]);
        make_source(i);
        break;
      case 6:
        failSimulatedCall(any_function(dice), 1 + dice.below(3), "Something went wrong.");
        break;
      case 7:  // unplugged
        for (const char* function : {"startMeasurement", "getRawDataEx"})
          failSimulatedCall(function, 0, "No device.");
        break;
      case 8:
      case 9:
        clearSimulatedFailures();
        break;
      case 10:
        delaySimulatedCall(any_function(dice), 1, dice.below(4) == 0 ? -1 : dice.below(100));
        break;
      case 11:
        setSimulatedScanPattern(phantom_.device, dice.below(2) == 0 ? small_ : phantom_.pattern);
        break;
    }
    pending_error();
  }

  static const char* any_function(Dice& dice) {
    constexpr std::array functions{"startMeasurement",  "getRawDataEx",       "setProcessedDataOutput",
                                   "executeProcessing", "getDataPropertyInt", "getDataPropertyFloat",
                                   "getDataPtr",        "createData"};
    return functions[static_cast<std::size_t>(dice.below(static_cast<int>(functions.size())))];
  }

  // What only the thread of the context may do.
  void replace(Dice& dice) {
    View& view = views_[static_cast<std::size_t>(dice.below(2))];
    if (dice.below(2) == 0) {
      const std::lock_guard lock(live_mutex_);
      beginOffscreenFrame(view.stage.target, width, height);
      clearLiveRendering(view.live);
      finishOffscreenFrame(view.stage.target, nullptr);
      make_live(view);
    } else {
      initialize(view);
    }
    pending_error();
  }

  Picture frame(View& view) {
    Picture picture(width, height);
    beginOffscreenFrame(view.stage.target, width, height);
    renderVolume(view.live);
    finishOffscreenFrame(view.stage.target, picture.bytes.data());
    pending_error();
    if (&view == &views_[0]) check(picture);
    return picture;
  }

  // Every ray through the middle of a volume of one value meets that value.
  void check(const Picture& picture) {
    const auto middle = picture.bgra(width / 2, height / 2);
    if (middle[0] + middle[1] + middle[2] == 0) return;  // nothing is shown yet
    ++pictures_;
    bool one = first_.shows(middle) || second_.shows(middle);
    for (int x = -2; x <= 2; ++x) {
      for (int y = -2; y <= 2; ++y)
        one =
            one && picture.bgra(static_cast<int>(width) / 2 + x, static_cast<int>(height) / 2 + y) == middle;
    }
    if (!one) ++mixed_;
  }

  void rest() {
    clearSimulatedFailures();
    releaseSimulatedCalls();
    for (const LiveDataSourceHandle source : sources_) stopDataSource(source);
    for (View& view : views_) frame(view);
    pending_error();
  }

  unsigned seed_;
  ConstantVolumes first_{16, 12, 10, {10.0F, 20.0F, 30.0F, 40.0F}};
  ConstantVolumes second_{16, 12, 10, {15.0F, 25.0F, 35.0F, 45.0F}};
  simulator::test::Scan phantom_{createSimulatedDevice(OCT_PHANTOM_FINGER_PAD, 128, 3), 12, 8, 1.0, 1.0};
  const ScanPatternHandle small_ = createSimulatedScanPattern(phantom_.device, 5, 7, 1.0, 1.0);
  std::array<View, 2> views_;
  std::array<LiveDataSourceHandle, 3> sources_{};
  std::mutex live_mutex_;  // over the handles of live renderers, which both threads use
  int steps_ = 0;
  int mixed_ = 0;
  int pictures_ = 0;
};

// Ends the process when nothing goes on any more: a test that hangs says nothing.
class Watchdog {
 public:
  explicit Watchdog(const RoughClient& client) : thread_([this, &client] { watch(client); }) {}
  ~Watchdog() {
    {
      const std::lock_guard lock(mutex_);
      done_ = true;
    }
    ended_.notify_all();
    thread_.join();
  }

 private:
  void watch(const RoughClient& client) {
    std::unique_lock lock(mutex_);
    for (int last = -1; !ended_.wait_for(lock, std::chrono::seconds(60), [this] { return done_; });) {
      if (client.steps() == last) {
        std::cerr << "Nothing has moved for a minute." << std::endl;
        std::abort();
      }
      last = client.steps();
    }
  }

  std::mutex mutex_;
  std::condition_variable ended_;
  bool done_ = false;
  std::thread thread_;
};

TEST(RoughSoakTest, EveryPictureIsOneVolumeAndNothingIsLeftBehind) {
  const char* const asked = std::getenv("OCT_SOAK_SECONDS");
  const auto end = Clock::now() + Seconds(asked ? std::atof(asked) : OCT_ROUGH_SOAK_SECONDS);
  const int device_objects = getSimulatedObjectCount();
  std::size_t threads = 0;
  {
    const VolumeStage first;  // OpenGL is loaded from here on
    const GlSpy spy;
    const auto seed = static_cast<unsigned>(std::random_device{}());
    RoughClient client(seed);
    const Watchdog watchdog(client);
    client.storm(Seconds(2.0));
    const std::size_t objects = client.idle_objects(spy);
    const std::size_t memory = resident_memory();
    threads = thread_count();
    std::size_t most = memory;
    do {
      client.storm(Seconds(3.0));
      ASSERT_EQ(client.mixed(), 0) << "seed " << seed;
      ASSERT_TRUE(client.shows_volumes_again()) << "seed " << seed;
      ASSERT_EQ(client.idle_objects(spy), objects) << "seed " << seed;
      most = std::max(most, resident_memory());
    } while (Clock::now() < end);
    EXPECT_LE(thread_count(), threads);
    EXPECT_GT(client.pictures(), 0);
    const double grown = (static_cast<double>(most) - static_cast<double>(memory)) / (1 << 20);
    EXPECT_LT(measures_memory ? grown : 0.0, 16.0) << "MiB";
    std::cout << client.steps() << " frames, " << client.pictures() << " with a volume\n";
  }
  EXPECT_EQ(getSimulatedObjectCount(), device_objects);
  EXPECT_EQ(pending_error(), "(none)");
}

}  // namespace
}  // namespace oct::test
