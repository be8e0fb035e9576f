// What the marks of a frame cost, while nobody listens and while somebody does. The cost of one mark is measured with
// many, which takes no account of caches that a frame has emptied; the marks of a frame are counted by a listener.
// Times are processor time of all threads.
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "core/timing_mark.h"
#include "gl/trace/pass_mark.h"
#include "median.h"
#include "oct_rendering/oct_rendering.h"

using oct::benchmark_scene::Median;

namespace {

double microseconds(std::clock_t start) {
  return 1e6 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

double nanoseconds_of_a_mark() {
  constexpr int count = 1'000'000;
  const std::clock_t start = std::clock();
  for (int i = 0; i < count; ++i) {
    const oct::gl::PassMark mark("mark");  // the dearer one
    benchmark::ClobberMemory();
  }
  return 1000.0 * microseconds(start) / count;
}

// The smallest frames, whose marks count most: a B-scan with another boundary of colours each time, and a volume that
// turns.
class Frames {
 public:
  Frames() {
    initDisplayRendering(display_);
    setDisplayData(display_, 256, 256, std::vector<float>(std::size_t{256} * 256, 0.5F).data());
    setOfflineRenderingRenderer(offline_, volume_);
    initializeVolumeRenderer(volume_);
    allocateOfflineVolume(offline_, 64, 64, 64);
    uploadOfflineVolume(offline_, std::vector<float>(std::size_t{64} * 64 * 64, 0.5F).data());
    setBorder(volume_, 1, 1, 1);
  }
  ~Frames() {
    clearOfflineRendering(offline_);
    deleteVolumeRenderer(volume_);
    clearDisplayRendering(display_);
    clearOffscreenTarget(target_);
  }
  Frames(const Frames&) = delete;
  Frames& operator=(const Frames&) = delete;

  void draw(bool volume) {
    beginOffscreenFrame(target_, 256, 256);
    ++round_;
    if (volume) {
      setAngles(volume_, round_, 20.0);
      renderOfflineVolume(offline_, 0);
    } else {
      setDisplayColoringBoundaries(display_, 0.0, 1.0 + 0.001 * (round_ % 2));
      renderDisplay(display_);
    }
    finishOffscreenFrame(target_, pixels_.data());
  }

 private:
  const OffscreenTargetHandle target_ = createOffscreenTarget();
  const DisplayRenderingHandle display_ = createDisplayRendering();
  const VolumeRendererHandle volume_ = createVolumeRenderer();
  const OfflineRenderingHandle offline_ = createOfflineRendering();
  std::vector<unsigned char> pixels_ = std::vector<unsigned char>(std::size_t{256} * 256 * 4);
  int round_ = 0;
};

void marks_of_a_frame(benchmark::State& state) {
  const bool volume = state.range(0) != 0;
  const std::string file = "benchmark_trace.json";
  Frames frames;
  for (int i = 0; i < 10; ++i) frames.draw(volume);
  int marks = 0;
  const auto count = [](const char*, unsigned, unsigned long long, void* user) {
    ++*static_cast<int*>(user);
  };
  setRendererTimingCallback(count, nullptr, count, &marks);
  frames.draw(volume);
  setRendererTimingCallback(nullptr, nullptr, nullptr, nullptr);

  Median unheard, traced, mark;
  const auto add_frames = [&](Median& median) {
    constexpr int batch = 20;
    const std::clock_t start = std::clock();
    for (int i = 0; i < batch; ++i) frames.draw(volume);
    median.add(microseconds(start) / batch);
  };
  for (auto _ : state) {
    mark.add(nanoseconds_of_a_mark());
    add_frames(unheard);
    setRendererTraceFile(file.c_str());
    add_frames(traced);
    setRendererTraceFile(nullptr);
  }
  std::remove(file.c_str());
  state.counters["marks"] = marks;
  state.counters["mark_ns"] = mark.value();
  state.counters["frame_us"] = unheard.value();
  state.counters["percent_of_frame"] = 0.1 * marks * mark.value() / unheard.value();
  state.counters["traced_frame_us"] = traced.value();
}
BENCHMARK(marks_of_a_frame)->ArgName("volume")->Arg(0)->Arg(1)->Iterations(15)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
