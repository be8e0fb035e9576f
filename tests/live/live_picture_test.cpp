// Live volumes of the simulated device, from the exports to the picture.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>

#include "oct_device/oct_device.h"
#include "oct_device/oct_simulator.h"
#include "support/test_context.h"
#include "support/volume_reference.h"

namespace oct::test {
namespace {

// The simulated device's own processing of the same volume, for comparison.
Volume measured(OCTDeviceHandle device, ProcessingHandle processing, ScanPatternHandle pattern) {
  const RawDataHandle raw = createRawData();
  const DataHandle data = createData();
  startMeasurement(device, pattern, 0);
  getRawDataEx(device, raw, 0);
  stopMeasurement(device);
  setProcessedDataOutput(processing, data);
  executeProcessing(processing, raw);
  Volume volume{getDataPropertyInt(data, OCT_DATA_SIZE_1),
                getDataPropertyInt(data, OCT_DATA_SIZE_2),
                getDataPropertyInt(data, OCT_DATA_SIZE_3),
                {}};
  const float* const samples = getDataPtr(data);
  volume.voxels.assign(samples, samples + getDataPropertyInt(data, OCT_DATA_BYTE_COUNT) / sizeof(float));
  clearData(data);
  clearRawData(raw);
  return volume;
}

class LivePictureTest : public testing::Test {
 protected:
  LivePictureTest() {
    device_ = createSimulatedDevice(OCT_PHANTOM_FINGER_PAD, 64, 1);
    processing_ = createSimulatedProcessing(device_);
    pattern_ = createSimulatedScanPattern(device_, 20, 12, 3.0, 1.5);
    live_ = createLiveRendering();
    setLiveVolumeRenderingRenderer(live_, stage_.renderer);
    source_ = createOnlineDataSource(device_, processing_);
  }
  ~LivePictureTest() override {
    clearDataSource(source_);
    clearLiveRendering(live_);
    clearSimulatedScanPattern(pattern_);
    clearSimulatedProcessing(processing_);
    clearSimulatedDevice(device_);
    EXPECT_EQ(getSimulatedObjectCount(), 0);
    EXPECT_EQ(pendingError(), "(none)");
  }

  // Frames until a volume has been taken; the picture shows it.
  Picture firstVolume(int width, int height) {
    Picture picture(width, height);
    for (int i = 0; i < 500 && !(getRenderedVolumesPerSec(live_) > 0.0); ++i) {
      beginOffscreenFrame(stage_.target, static_cast<unsigned>(width), static_cast<unsigned>(height));
      renderVolume(live_);
      finishOffscreenFrame(stage_.target, picture.bytes.data());
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return picture;
  }

  VolumeStage stage_;
  OCTDeviceHandle device_ = nullptr;
  ProcessingHandle processing_ = nullptr;
  ScanPatternHandle pattern_ = nullptr;
  LiveVolumeRenderingHandle live_ = nullptr;
  LiveDataSourceHandle source_ = nullptr;
};

TEST_F(LivePictureTest, FirstVolumeOfTheDevice) {
  // The same seed gives the same volumes.
  const OCTDeviceHandle twin = createSimulatedDevice(OCT_PHANTOM_FINGER_PAD, 64, 1);
  VolumeScene scene;
  scene.volume = measured(twin, processing_, pattern_);
  clearSimulatedDevice(twin);
  scene.border = true;
  scene.range = {3.6F, 3.0F, 1.5F};
  scene.coloring = {rampColors(256, 0.5), 0.0, 60.0};
  scene.angleX = 25.0;
  scene.angleY = -35.0;
  apply(scene, stage_.renderer);
  setRenderElements(stage_.renderer, 1, 0);
  startDataSource(live_, source_, pattern_);
  const Picture picture = firstVolume(scene.viewportWidth, scene.viewportHeight);
  EXPECT_TRUE(agree(picture, referencePicture(scene), {1, 0.99, 140, 0.3}));
  stopDataSource(source_);
  EXPECT_TRUE(isLiveVolumeRunning(live_));
  beginOffscreenFrame(stage_.target, 1, 1);
  renderVolume(live_);
  EXPECT_FALSE(isLiveVolumeRunning(live_));
}

}  // namespace
}  // namespace oct::test
