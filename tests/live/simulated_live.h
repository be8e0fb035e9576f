// A live renderer and a source with the simulated device.
#pragma once

#include <gtest/gtest.h>

#include "simulator/device_objects.h"
#include "support/test_context.h"
#include "support/volume_scene.h"

namespace oct::test {

class SimulatedLiveTest : public testing::Test {
 protected:
  SimulatedLiveTest(OCTDeviceHandle ownedDevice, int aScans, int bScans, double widthMm, double lengthMm)
      : scan_(ownedDevice, aScans, bScans, widthMm, lengthMm) {
    setLiveVolumeRenderingRenderer(live_, stage_.renderer);
    setRenderElements(stage_.renderer, 1, 0);
  }
  ~SimulatedLiveTest() override {
    clearDataSource(source_);
    frame(1, 1);
    clearLiveRendering(live_);
    EXPECT_EQ(pendingError(), "(none)");
  }

  void start() { startDataSource(live_, source_, scan_.pattern); }
  void frame(unsigned width, unsigned height) {
    beginOffscreenFrame(stage_.target, width, height);
    renderVolume(live_);
  }

  const VolumeStage stage_;
  const simulator::test::Scan scan_;
  const LiveVolumeRenderingHandle live_ = createLiveRendering();
  const LiveDataSourceHandle source_ = createOnlineDataSource(scan_.device, scan_.processing);
};

}  // namespace oct::test
