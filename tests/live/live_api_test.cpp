// Exports of live volumes: what they refuse, with which words, and which of them are silent. What a device
// delivers is what the picture shows: against a ray caster on the CPU.
#include <array>
#include <cmath>
#include <limits>

#include "core/object_lock.h"
#include "live/live_test.h"
#include "support/reference/volume_reference.h"
#include "support/test_context.h"
#include "volume/volume_renderer.h"

namespace oct::test {
namespace {

using LiveApiTest = LiveTest;

constexpr const char* invalid_source = "The specified LiveDataSourceHandle is invalid. ";
constexpr const char* invalid_renderer = "The specified VolumeRendererHandle is invalid. ";

TEST_F(LiveApiTest, NullHandles) {
  const OCTDeviceHandle device = device_.device();
  const ProcessingHandle processing = device_.processing(0);
  make_source();
  const LiveDataSourceHandle source = source_;
  expect_null_refused("Cannot lock nullptr. ", clearLiveRendering, isLiveVolumeRunning);
  expect_null_refused("Invalid Live Rendering Handle specified. ", setLiveVolumeRenderingRenderer);
  expect_null_refused(invalid_source, stopDataSource, cancelDataSource, isDataSourceRunning,
                      getLiveVolumeRenderingSize, getDataSourceError, getRefIntensity, setSizeZ,
                      setRefIntensityCallback, setVolumeCallbackWithUser, setErrorCallback);
  expect_null_refused(invalid_renderer, renderVolume, getRenderedVolumesPerSec, getLiveVolumeCounts,
                      getLiveStatistics);
  const auto create_ps = [&](ProcessingHandle first, ProcessingHandle second) {
    return [=] { EXPECT_EQ(createOnlineDataSource_PS(device, first, second, nullptr), nullptr); };
  };
  unsigned drawn = 7;
  constexpr const char* not_valid = "The handle is not valid. ";
  const auto other = reinterpret_cast<LiveVolumeRenderingHandle>(source);
  const std::string no_device = "The specifided OCTDeviceHandle is invalid. ";
  expect_refused({
      {no_device, [] { createOnlineDataSource(nullptr, nullptr); }},
      {no_device, [] { createOnlineDataSource_PS(nullptr, nullptr, nullptr, nullptr); }},
      {invalid_source, [] { startDataSource(nullptr, nullptr, nullptr); }},
      {not_valid, [&] { startDataSource(other, source, nullptr); }},
      {not_valid, [&] { clearDataSource(reinterpret_cast<LiveDataSourceHandle>(live_)); }},
      {not_valid, [&] { selectOnlineDataSource_Camera(reinterpret_cast<LiveDataSourceHandle>(live_), 1); }},
      {"Cannot lock nullptr. ", [&] { setLiveVolumeRenderingRenderer(live_, nullptr); }},
      {"The specifided ProcessingHandle is invalid. ",
       [&] { EXPECT_EQ(createOnlineDataSource(device, nullptr), nullptr); }},
      {"The specifided ProcessingHandle for camera/sensor-0 is invalid. ", create_ps(nullptr, processing)},
      {"The specifided ProcessingHandle for camera/sensor-1 is invalid. ", create_ps(processing, nullptr)},
      {"The specifided PolarizationProcessingHandle is invalid. ", create_ps(processing, processing)},
      {invalid_renderer, [&] { startDataSource(nullptr, source, nullptr); }},
      {"The specified ScanPatternHandle is invalid. ", [&] { startDataSource(live_, source, nullptr); }},
      {invalid_renderer, [&] { getLiveVolumeCounts(nullptr, &drawn, nullptr); }},
  });
  EXPECT_EQ(drawn, 7U);
  // These take null without a word.
  setOnlineRefractiveIndex(nullptr, 0.0);
  setOnlineAnalogInputConfiguration(nullptr, true);
  selectOnlineDataSource_Camera(nullptr, 1);
  selectOnlineDataSource_PS(nullptr, 1);
  setOnlineAveraging_PS(nullptr, 1, 1, 1, 1);
  setOnlineDOPU_PS(nullptr, 1, 1, 1, 1);
  setOnlineDataThreshold_PS(nullptr, 1.0, true);
  clearDataSource(nullptr);
  EXPECT_EQ(pending_error(), "(none)");
  EXPECT_FALSE(isLiveVolumeRunning(live_)) << "nothing was started";
  EXPECT_EQ(device_.volumes(), 0);
  EXPECT_EQ(object_lock_count(), 0U);
}

TEST_F(LiveApiTest, Misuse) {
  make_source();
  const LiveDataSourceHandle source = source_;
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  const std::string index = "The refractive index must be above zero. ";
  const std::string no_size = "The size of the statistics must be set. ";
  OctLiveStatistics unsized{};
  const std::string size = "At least one depth sample must be kept. ";
  expect_refused({{index, [=] { setOnlineRefractiveIndex(source, 0.0); }},
                  {index, [=] { setOnlineRefractiveIndex(source, -1.33); }},
                  {index, [=] { setOnlineRefractiveIndex(source, nan); }},
                  {index, [=] { setOnlineRefractiveIndex(source, HUGE_VAL); }},
                  {size, [=] { setSizeZ(source, 0); }},
                  {size, [=] { setSizeZ(source, -5); }},
                  {no_size, [&] { getLiveStatistics(live_, nullptr); }},
                  {no_size, [&] { getLiveStatistics(live_, &unsized); }},
                  {"(none)", [=] { stopDataSource(source); }},  // nothing runs
                  {"(none)", [&] { start(); }},
                  {"BrennickDataSource already running", [&] { start(); }}});
  EXPECT_TRUE(frames_until_shown()) << "the source runs on";
  EXPECT_TRUE(isLiveVolumeRunning(live_));
  stopDataSource(source);
  EXPECT_TRUE(isLiveVolumeRunning(live_));
  frame();
  EXPECT_FALSE(isLiveVolumeRunning(live_));
  stopDataSource(source);
  EXPECT_FALSE(isLiveVolumeRunning(live_)) << "a source that is stopped has no renderer to stop";
  EXPECT_EQ(object_lock_count(), 0U);
}

// A standard source takes the settings of the other kind and does nothing with them.
TEST_F(LiveApiTest, SettingsOfTheOtherKindOfSource) {
  make_polarization_source();
  expect_refused({{"Analog input not supported in PS Live mode.",
                   [&] { setOnlineAnalogInputConfiguration(source_, true); }},
                  {"(none)", [&] { setOnlineAnalogInputConfiguration(source_, false); }}});
  clearDataSource(source_);
  make_source();
  selectOnlineDataSource_PS(source_, 42);
  setOnlineAveraging_PS(source_, 0, -1, 2, 3);
  setOnlineDOPU_PS(source_, 2, 3, 4, -9);
  setOnlineDataThreshold_PS(source_, -3.5, true);
  EXPECT_EQ(pending_error(), "(none)");
  device_.record();
  run(2);
  EXPECT_EQ(device_.calls().find("olarization"), std::string::npos);
}

// A live renderer that is cleared while it runs takes its OpenGL objects along on the thread of its context,
// and leaves them to the context elsewhere.
TEST_F(LiveApiTest, ClearedWhileRunning) {
  make_source();
  start();
  ASSERT_TRUE(frames_until_shown());
  stopDataSource(source_);
  std::thread([&] { clearLiveRendering(live_); }).join();
  live_ = createLiveRendering();
  setLiveVolumeRenderingRenderer(live_, renderer_);
  start();
  EXPECT_TRUE(frames_until_shown());
  // The order in which the client clears what it has stopped is its own.
  stopDataSource(source_);
  clearLiveRendering(live_);
  clearDataSource(std::exchange(source_, nullptr));
  live_ = createLiveRendering();
}

struct Case {
  std::string name;
  int kept = 20;
  double refractive_index = 1.0;
  int mode = 0;
  bool analog = false;
};

// The first samples of every A-scan.
Volume cropped(const Volume& whole, int kept) {
  Volume volume{kept, whole.height, whole.depth, {}};
  for (std::size_t start = 0; start < whole.voxels.size(); start += static_cast<std::size_t>(whole.width)) {
    const auto first = whole.voxels.begin() + static_cast<std::ptrdiff_t>(start);
    volume.voxels.insert(volume.voxels.end(), first, first + kept);
  }
  return volume;
}

class LivePicturesTest : public LiveTest, public testing::WithParamInterface<Case> {};

TEST_P(LivePicturesTest, EqualTheArithmetic) {
  const Case& wanted = GetParam();
  const Volume whole = test_volume(20, 14, 12);
  VolumeScene scene;
  scene.volume = cropped(whole, wanted.kept);
  scene.border = true;
  scene.mode = wanted.mode;
  scene.coloring = {ramp_colors(256, 0.3), 0.2, 1.0};
  scene.angle_x = 25.0;
  scene.angle_y = -35.0;
  scene.range = {static_cast<float>(2.0 * wanted.kept / 20 / wanted.refractive_index), 3.0F, 1.5F};
  device_.set_size(20, 14, 12);
  device_.set_volume(whole.voxels.data());
  make_source();
  setSizeZ(source_, wanted.kept);
  setOnlineRefractiveIndex(source_, wanted.refractive_index);
  if (wanted.analog) {
    scene.secondary = test_volume(3, 14, 12, 9);
    scene.secondary_coloring = {opaque_colors(32), 0.0, 1.0};
    scene.secondary_index = 1;
    device_.set_analog(3, scene.secondary.voxels.data());
    setOnlineAnalogInputConfiguration(source_, true);
  }
  apply(scene, renderer_);
  start();
  ASSERT_TRUE(frames_until_shown());
  // A few volumes more: both buffers, and the range of the loop.
  const int before = device_.volumes();
  ASSERT_TRUE(frames_until([&] { return device_.volumes() > before + 4; }));
  const Picture picture = frame(scene.viewport_width, scene.viewport_height);
  EXPECT_TRUE(agree(picture, reference_picture(scene), {1, 0.995, 140, 0.12}));
  EXPECT_EQ(voxels_, scene.volume.voxels);
  int size[3] = {};
  getLiveVolumeRenderingSize(live_, &size[0], nullptr, &size[2]);
  getLiveVolumeRenderingSize(live_, nullptr, &size[1], nullptr);
  EXPECT_EQ(std::to_array(size), (std::array{wanted.kept, 14, 12}));
}

INSTANTIATE_TEST_SUITE_P(Live, LivePicturesTest,
                         testing::Values(Case{"Whole"}, Case{"Cropped", 9}, Case{"Refracted", 20, 1.34},
                                         Case{"CroppedAndRefracted", 13, 1.5}, Case{"Maximum", 20, 1.0, 1},
                                         Case{"Mean", 11, 1.0, 2}, Case{"DualColoring", 20, 1.0, 3, true},
                                         Case{"CroppedDualColoring", 10, 1.0, 3, true}),
                         [](const auto& entry) { return entry.param.name; });

// The surface lies where the tissue of the same picture begins, and ends where the tissue begins below what
// is kept.
class LiveSurfaceTest : public LiveTest, public testing::WithParamInterface<int> {};

TEST_P(LiveSurfaceTest, LiesOnTheTissue) {
  const int kept = GetParam();
  Volume whole{16, 12, 10, std::vector<float>(16 * 12 * 10)};
  std::vector<float> depths;  // of the kept samples, in the unit of their range
  for (int a_scan = 0; a_scan < 12 * 10; ++a_scan) {
    const int first = 2 + a_scan % 12 / 2 + a_scan / 12 / 2;
    std::fill_n(whole.voxels.begin() + a_scan * 16 + first, 16 - first, 1.0F);
    depths.push_back(first < kept ? static_cast<float>(2.0 / 16 / 1.25 * (first + 0.5))
                                  : std::numeric_limits<float>::quiet_NaN());
  }
  const auto prepare = [](VolumeRendererHandle renderer) {
    VolumeScene scene;
    scene.angle_x = 60.0;
    apply(scene, renderer);
    setRenderElements(renderer, 0, 1);
  };
  const double range = 2.0 * kept / 16 / 1.25;
  device_.set_volume(whole.voxels.data());
  make_source();
  setSizeZ(source_, kept);
  setOnlineRefractiveIndex(source_, 1.25);
  prepare(renderer_);
  start();
  ASSERT_TRUE(frames_until([&] { return device_.volumes() > 3; }));
  const Picture picture = frame(80, 60);

  VolumeStage still;
  setOfflineAspectRatio(still.offline, static_cast<float>(range), 3.0F, 1.5F);
  const auto drawn = [&] {
    prepare(still.renderer);
    setSurface(still.renderer, 12, 10, range, depths.data());
    return still.frame(80, 60, 0);
  };
  drawn();
  EXPECT_TRUE(agree(picture, drawn(), {1, 0.999, 80}));
  for (float& depth : depths) depth *= 1.3F;
  EXPECT_FALSE(agree(picture, drawn(), {40, 0.98, 255})) << "nothing of the surface is seen";
}

INSTANTIATE_TEST_SUITE_P(Live, LiveSurfaceTest, testing::Values(16, 8));

// ---- The samples of volumes

TEST_F(LiveApiTest, VolumesAreToldAsTheyAreDrawn) {
  const Volume volume = test_volume(16, 12, 10);
  device_.set_volume(volume.voxels.data());
  for (const int kept : {16, 5}) {
    for (const bool polarization : {false, true}) {
      polarization ? make_polarization_source() : make_source();
      setSizeZ(source_, kept);
      ToldVolumes told;
      told.listen_to(source_);
      start();
      EXPECT_TRUE(frames_until([&] { return !voxels_.empty() && told.all().size() > 2; }));
      stopDataSource(source_);
      const std::vector<ToldVolume> volumes = told.all();
      for (std::size_t i = 0; i < volumes.size(); ++i) {
        EXPECT_EQ(volumes[i].size, (std::array{kept, 12, 10}));
        EXPECT_EQ(volumes[i].samples, voxels_);
        EXPECT_EQ(volumes[i].index, i);
        EXPECT_GT(volumes[i].nanoseconds, i > 0 ? volumes[i - 1].nanoseconds : 0);
      }
      clearDataSource(std::exchange(source_, nullptr));
      frame();
    }
  }
}

// Functions take turns while volumes come, hidden ones as well; after the last one nobody is told.
TEST_F(LiveApiTest, VolumeCallbacksTakeTurns) {
  make_source();
  ToldVolumes first;
  ToldVolumes second;
  first.listen_to(source_);
  start();
  EXPECT_TRUE(frames_until([&] { return first.all().size() > 1; }));
  setRenderElements(renderer_, 0, 0);
  second.listen_to(source_);
  EXPECT_TRUE(frames_until([&] { return !second.all().empty(); }));
  const auto ended = first.all();
  EXPECT_TRUE(frames_until([&] { return second.all().size() > 3; }));
  EXPECT_EQ(first.all().size(), ended.size());
  EXPECT_EQ(second.all()[0].index, ended.back().index + 1);
  setVolumeCallbackWithUser(source_, nullptr, nullptr);
  const int before = device_.volumes();
  EXPECT_TRUE(frames_until([&] { return device_.volumes() > before + 2; }));  // past a call that was running
  const std::size_t last = second.all().size();
  EXPECT_TRUE(frames_until([&] { return device_.volumes() > before + 6; }));
  EXPECT_EQ(second.all().size(), last);
}

TEST_F(LiveApiTest, AVolumeCallbackThatThrowsEndsItsSource) {
  using Function = OctVolumeFunctionWithUser;
  constexpr auto throws_text = +[](const float*, int, int, int, unsigned long long, unsigned long long,
                                   void*) { throw std::runtime_error("no room left"); };
  constexpr auto throws_number =
      +[](const float*, int, int, int, unsigned long long, unsigned long long, void*) { throw 1; };
  make_source();
  const std::pair<Function, const char*> throwing[] = {{throws_text, "no room left"},
                                                       {throws_number, "An unknown error. "}};
  for (const auto& [function, text] : throwing) {
    client_errors.clear();
    setVolumeCallbackWithUser(source_, function, nullptr);
    start();
    EXPECT_TRUE(frames_until([&] { return !isDataSourceRunning(source_); }));
    EXPECT_EQ(client_errors.all(), std::vector<std::string>{text});
    EXPECT_EQ(device_.objects(), 0);
    stopDataSource(source_);
  }
  setVolumeCallbackWithUser(source_, nullptr, nullptr);
  start();
  EXPECT_TRUE(frames_until_shown());
}

}  // namespace
}  // namespace oct::test
