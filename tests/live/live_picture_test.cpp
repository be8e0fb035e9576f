// Live volumes of the simulated device, from the exports to the picture.
#include <chrono>
#include <thread>

#include "live/simulated_live.h"
#include "support/reference/volume_reference.h"

namespace oct::test {
namespace {

class LivePictureTest : public SimulatedLiveTest {
 protected:
  static OCTDeviceHandle makeDevice() { return createSimulatedDevice(OCT_PHANTOM_FINGER_PAD, 64, 1); }

  LivePictureTest() : SimulatedLiveTest(makeDevice(), 20, 12, 3.0, 1.5) {}

  // The first volume of a device of its own, which is the same as the first one of the source's: their seeds
  // are the same.
  Volume measured() const {
    const simulator::test::Scan twin(makeDevice(), 20, 12, 3.0, 1.5);
    const simulator::test::OwnedRawData raw;
    const simulator::test::OwnedData data;
    startMeasurement(twin.device, twin.pattern, 0);
    getRawDataEx(twin.device, raw, 0);
    setProcessedDataOutput(twin.processing, data);
    executeProcessing(twin.processing, raw);
    const auto [width, height, depth] = simulator::test::sizesOf(data);
    return {width, height, depth, simulator::test::samplesOf(data)};
  }

  // Frames until a volume has been taken; the picture shows it.
  Picture firstVolume(int width, int height) {
    Picture picture(width, height);
    for (int i = 0; i < 500 && !(getRenderedVolumesPerSec(live_) > 0.0); ++i) {
      frame(static_cast<unsigned>(width), static_cast<unsigned>(height));
      finishOffscreenFrame(stage_.target, picture.bytes.data());
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return picture;
  }
};

TEST_F(LivePictureTest, FirstVolumeOfTheDevice) {
  VolumeScene scene;
  scene.volume = measured();
  scene.border = true;
  scene.range = {3.6F, 3.0F, 1.5F};
  scene.coloring = {rampColors(256, 0.5), 0.0, 60.0};
  scene.angleX = 25.0;
  scene.angleY = -35.0;
  apply(scene, stage_.renderer);
  setRenderElements(stage_.renderer, 1, 0);
  start();
  const Picture picture = firstVolume(scene.viewportWidth, scene.viewportHeight);
  EXPECT_TRUE(agree(picture, referencePicture(scene), {1, 0.99, 140, 0.3}));
  stopDataSource(source_);
  EXPECT_TRUE(isLiveVolumeRunning(live_));
  frame(1, 1);
  EXPECT_FALSE(isLiveVolumeRunning(live_));
}

}  // namespace
}  // namespace oct::test
