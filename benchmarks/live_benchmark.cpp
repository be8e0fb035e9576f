// Live volumes per second through the whole hand-over, from an acquisition thread with a device that costs
// nothing to the texture, with nothing drawn. The bound is what must be done in any case, measured in turn in
// the same run: one plain copy of the same bytes and one upload of them. A cropped volume is bounded by the
// bytes that are kept.
#include <chrono>
#include <cstring>
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>

#include "gl/context/opengl_context.h"
#include "gl/context/opengl_loader.h"
#include "gl/context/opengl_window.h"
#include "gl/texture_3d.h"
#include "live/brennick_data_source.h"
#include "live/fast_opengl_volume_renderer.h"
#include "median.h"
#include "volume/volume_renderer.h"

namespace {

using Clock = std::chrono::steady_clock;
using oct::benchmark_scene::Median;

constexpr int batch = 8;

double milliseconds(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// The volume that the device below delivers again and again. Its functions take no pointer of ours.
struct Recording {
  int size1 = 0;
  int size2 = 0;
  int size3 = 0;
  std::vector<float> samples;
};
Recording recording;

template <class Handle>
Handle any_handle() {
  return reinterpret_cast<Handle>(&recording);
}

std::shared_ptr<const oct::DeviceLibrary> instant_device() {
  auto library = std::make_shared<oct::DeviceLibrary>();
  oct::StandardDeviceFunctions& f = library->standard;
  f.getDevicePropertyInt = [](OCTDeviceHandle, int) { return 2 * recording.size1; };
  f.getDevicePropertyFloat = [](OCTDeviceHandle, int) { return 1.0; };
  f.createRawData = any_handle<RawDataHandle>;
  f.clearRawData = [](RawDataHandle) {};
  f.createData = any_handle<DataHandle>;
  f.clearData = [](DataHandle) {};
  f.startMeasurement = [](OCTDeviceHandle, ScanPatternHandle, int) {};
  f.stopMeasurement = [](OCTDeviceHandle) {};
  f.isError = [] { return 0; };
  f.getError = [](char*, int) { return 0; };
  f.getRawDataEx = [](OCTDeviceHandle, RawDataHandle, int) {};
  f.setProcessedDataOutput = [](ProcessingHandle, DataHandle) {};
  f.executeProcessing = [](ProcessingHandle, RawDataHandle) {};
  f.getDataPropertyInt = [](DataHandle, int property) {
    const int bytes = static_cast<int>(recording.samples.size() * sizeof(float));
    return property == OCT_DATA_SIZE_1   ? recording.size1
           : property == OCT_DATA_SIZE_2 ? recording.size2
           : property == OCT_DATA_SIZE_3 ? recording.size3
                                         : bytes;
  };
  f.getDataPropertyFloat = [](DataHandle, int) { return 1.0; };
  f.setDataRange = [](DataHandle, double, double, double) {};
  f.getDataPtr = [](DataHandle) { return recording.samples.data(); };
  return library;
}

// Renders until so many more volumes have reached the texture.
void take_volumes(oct::FastOpenGLVolumeRenderer& live, std::uint64_t count) {
  const auto shown = [&] { return live.feed()->counts().shown; };
  for (const std::uint64_t end = shown() + count; shown() < end;) live.render();
}

void live_volumes(benchmark::State& state) {
  const int kept = static_cast<int>(state.range(0));
  recording = {static_cast<int>(state.range(1)),
               static_cast<int>(state.range(2)),
               static_cast<int>(state.range(3)),
               {}};
  const auto a_scans = static_cast<std::size_t>(recording.size2) * static_cast<std::size_t>(recording.size3);
  recording.samples.assign(a_scans * static_cast<std::size_t>(recording.size1), 1.0F);

  oct::gl::OpenGLWindow window;
  oct::gl::OpenGLContext context(window);
  context.makeCurrent();
  oct::gl::initGlew();
  glViewport(0, 0, 0, 0);

  std::vector<float> copy(a_scans * static_cast<std::size_t>(kept));
  oct::gl::Texture3D texture;
  texture.allocate({kept, recording.size2, recording.size3}, GL_R32F, "live benchmark");

  oct::VolumeRenderer renderer;
  renderer.set_render_elements(true, false);
  oct::FastOpenGLVolumeRenderer live;
  live.set_renderer(&renderer);
  oct::BrennickDataSource source(instant_device(), any_handle<OCTDeviceHandle>(),
                                 any_handle<ProcessingHandle>());
  source.set_size_z(kept);

  Median hand_over, copying, cropping, uploading;
  for (auto _ : state) {
    source.start(live.feed(), any_handle<ScanPatternHandle>());
    take_volumes(live, 2);
    auto start = Clock::now();
    take_volumes(live, batch);
    hand_over.add(milliseconds(start) / batch);
    source.stop();
    live.render();

    start = Clock::now();
    for (int i = 0; i < batch; ++i) {
      std::memcpy(copy.data(), recording.samples.data(), copy.size() * sizeof(float));
      benchmark::ClobberMemory();
    }
    copying.add(milliseconds(start) / batch);
    start = Clock::now();
    for (int i = 0; i < batch; ++i) {
      for (std::size_t a = 0; a < a_scans; ++a) {
        std::memcpy(copy.data() + a * static_cast<std::size_t>(kept),
                    recording.samples.data() + a * static_cast<std::size_t>(recording.size1),
                    static_cast<std::size_t>(kept) * sizeof(float));
      }
      benchmark::ClobberMemory();
    }
    cropping.add(milliseconds(start) / batch);
    start = Clock::now();
    for (int i = 0; i < batch; ++i) {
      glBindTexture(GL_TEXTURE_3D, texture.get());
      glTexSubImage3D(GL_TEXTURE_3D, 0, 0, 0, 0, kept, recording.size2, recording.size3, GL_RED, GL_FLOAT,
                      copy.data());
      glFinish();
    }
    uploading.add(milliseconds(start) / batch);
  }
  texture.reset();
  const double bound = copying.value() + uploading.value();
  state.counters["volumes_per_s"] = 1000.0 / hand_over.value();
  state.counters["copy_ms"] = copying.value();
  state.counters["crop_ms"] = cropping.value();
  state.counters["upload_ms"] = uploading.value();
  state.counters["of_bound"] = bound / hand_over.value();
}
BENCHMARK(live_volumes)
    ->ArgNames({"kept", "size1", "size2", "size3"})
    ->Args({512, 512, 256, 256})
    ->Args({1024, 1024, 512, 100})
    ->Args({512, 1024, 512, 100})
    ->Unit(benchmark::kMillisecond)
    ->MinTime(5.0)
    ->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
