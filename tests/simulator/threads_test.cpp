// What many threads compute together, and what one of them may stop.

#include <algorithm>
#include <atomic>
#include <stdexcept>

#include <gtest/gtest.h>

#include "base/parallel.h"
#include "base/recording.h"
#include "phantoms/finger_pad.h"
#include "processing/surface.h"
#include "simulator/measurement.h"

namespace oct::simulator::test {
namespace {

TEST(ParallelRanges, CoversEveryItemOnceAndPassesOnAnExceptionOfAnyWorker) {
  for (const int workers : {0, 1, 3, 50})
    for (const int count : {0, 1, 7, 100}) {
      std::vector<int> visits(count);
      parallel_ranges(count, workers, [&](int begin, int end) {
        for (int i = begin; i < end; ++i) ++visits[i];
      });
      EXPECT_EQ(visits, std::vector<int>(count, 1)) << workers << " workers, " << count << " items";
    }
  for (const int faulty : {0, 5, 9})
    EXPECT_THROW(parallel_ranges(10, 4,
                                 [&](int begin, int end) {
                                   if (begin <= faulty && faulty < end) throw std::runtime_error("fault");
                                 }),
                 std::runtime_error);
}

// All that a device with two sensors gives, and a recording beside it.
std::vector<std::vector<float>> everything(std::uint64_t seed, int workers) {
  Device device(Spectrometer(128, 1300.0, 3.6), std::make_shared<FingerPad>(seed), seed, 2);
  Sensors sensors;
  sensors.measure(device, ScanPattern(17, 3, 3.0, 3.0), workers);
  Data surface;
  find_surface(sensors.pictures[0], surface, workers);
  std::vector<std::vector<float>> results{sensors.pictures[0].samples(), sensors.pictures[1].samples(),
                                          surface.samples(),
                                          sensors.compute(PolarizationProcessing::dopu, workers).samples()};
  constexpr std::size_t recorded = 100 * 100 * 60;  // three threads' worth
  const Recording recording(std::vector<float>(recorded).data(), {100, 100, 60}, 1, 1.0, seed);
  recording.play(5, results.emplace_back(recorded), workers);
  return results;
}

TEST(Threads, TheirNumberChangesNothingAndTheSeedEverything) {
  const auto one = everything(3, 1);
  EXPECT_EQ(everything(3, 7), one);
  const auto other = everything(4, 1);
  for (std::size_t i = 0; i < one.size(); ++i) EXPECT_NE(other[i], one[i]) << i;
}

// Stops the measurement from within, at its tenth A-scan.
struct StoppingPhantom : Phantom {
  void describe(double, double, double, DepthProfile&) const override {
    if (++seen == 10) device->stop();
  }
  mutable std::atomic<int> seen = 0;
  Device* device = nullptr;
};

TEST(Threads, AStopEndsAnAcquisitionUnderWay) {
  const auto phantom = std::make_shared<StoppingPhantom>();
  Device device(Spectrometer(64, 1300.0, 3.6), phantom, 1);
  phantom->device = &device;
  RawData raw;
  device.start(ScanPattern(100, 100, 1.0, 1.0), 0);
  EXPECT_THROW(device.acquire(raw, 0, 2), std::runtime_error);
  EXPECT_TRUE(raw.empty());
  EXPECT_LT(phantom->seen, 100);
}

}  // namespace
}  // namespace oct::simulator::test
