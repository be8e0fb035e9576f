// A live renderer, a source with the pattern device, and a client that renders.
#pragma once

#include <array>
#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "live/pattern_device.h"
#include "support/test_loop.h"
#include "support/volume_scene.h"

namespace oct::test {

// What arrived at the functions of setErrorCallback and setRefIntensityCallback.
inline Recorded<std::string> client_errors;
inline Recorded<double> intensities;

// What arrived at a function of setVolumeCallbackWithUser.
struct ToldVolume {
  std::array<int, 3> size;  // depth, A-scans, B-scans
  std::vector<float> samples;
  unsigned long long index;
  unsigned long long nanoseconds;
};
class ToldVolumes : public Recorded<ToldVolume> {
 public:
  void listen_to(LiveDataSourceHandle source);
};

// Expects at its end that nothing is left: objects of the device, errors, misuse of its handles.
class LiveTest : public testing::Test {
 protected:
  LiveTest();
  ~LiveTest() override;

  void make_source();
  void make_polarization_source();
  void start() { startDataSource(live_, source_, device_.scan_pattern()); }

  // What the reference intensity function does from now on, on the acquisition thread, before it is noted.
  void on_intensity(std::function<void()> action);
  void on_error(std::function<void()> action);

  Picture frame(int width = 24, int height = 16) { return frame(width, height, live_); }
  Picture frame(int width, int height, LiveVolumeRenderingHandle drawn);
  // Frames, for ten seconds at most, until the condition holds.
  bool frames_until(const std::function<bool()>& condition);
  bool frames_until_shown() {
    return frames_until([&] { return !voxels_.empty(); });
  }
  // What getDataSourceError tells until it tells nothing.
  std::vector<std::string> unread_errors();
  // Renders, and stops after so many volumes, from the reference intensity function. No volume is dropped:
  // each waits until a buffer is free.
  void run(int volumes);

  VolumeStage volume_stage_;
  VolumeRendererHandle renderer_ = volume_stage_.renderer;
  PatternDevice& device_ = *patternDevice();
  LiveVolumeRenderingHandle live_ = nullptr;
  LiveDataSourceHandle source_ = nullptr;
  std::vector<float> voxels_;  // of the texture drawn in the latest frame; empty: none

 private:
  void listen_to(LiveDataSourceHandle source);
  void read_voxels(LiveVolumeRenderingHandle drawn);

  std::atomic<int> frames_ = 0;
};

// Whether all voxels are the same.
bool uniform(const std::vector<float>& voxels);

}  // namespace oct::test
