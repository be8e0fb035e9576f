// The exact sequence of calls that a source makes into the device library, what becomes of a device's errors
// at every call of it, and that the source starts again afterwards.
#include <algorithm>
#include <chrono>
#include <thread>

#include "live/live_test.h"
#include "support/test_context.h"
#include "volume/volume_renderer.h"

namespace oct::test {
namespace {

using DeviceCallsTest = LiveTest;

// What is asked of the first volume, once it has been processed.
const std::string sizes_and_ranges = R"(getDataPropertyInt(data0, 2)
getDataPropertyInt(data0, 3)
getDataPropertyInt(data0, 1)
getDataPropertyFloat(data0, 4)
getDataPropertyFloat(data0, 5)
getDataPropertyFloat(data0, 3)
)";
const std::string copied = "getDataPropertyInt(data0, 5)\ngetDataPtr(data0)\n";
const std::string measurement = "startMeasurement(device, scan, 0)\nisError()\n";
const std::string reported = "getError(512)\ngetRelativeReferenceIntensity(device, processing0)\n";

TEST_F(DeviceCallsTest, StandardSource) {
  device_.record();
  make_source();
  run(3);
  const std::string acquired = "setProcessedDataOutput(processing0, data0)\ngetRawDataEx(device, raw0, 0)\n";
  const std::string loop =
      acquired + "executeProcessing(processing0, raw0)\nsetDataRange(data0, 2, 3, 1.5)\n" + reported;
  EXPECT_EQ(device_.calls(),
            "getDevicePropertyInt(device, 0)\ngetDevicePropertyFloat(device, 1)\ncreateRawData()\n"
            "createData()\n" +
                measurement + acquired + "getError(512)\nexecuteProcessing(processing0, raw0)\n" +
                sizes_and_ranges + copied + loop + copied + loop +
                "stopMeasurement(device)\nclearRawData(raw0)\nclearData(data0)\n");
  EXPECT_EQ(intensities.all(), std::vector<double>(2, 0.625));
}

// Analog input, half the depth, a refractive index, the surface, the other camera, and nobody who asks for
// the reference intensity.
TEST_F(DeviceCallsTest, StandardSourceWithEverything) {
  make_source();
  setOnlineAnalogInputConfiguration(source_, true);
  selectOnlineDataSource_Camera(source_, 1);
  setOnlineRefractiveIndex(source_, 1.25);
  setRenderElements(renderer_, 1, 1);
  setRefIntensityCallback(source_, nullptr);
  device_.record();
  setSizeZ(source_, 8);
  device_.hold("setDataRange");
  start();
  ASSERT_TRUE(frames_until([&] { return device_.held(); }));
  for (int i = 0; i < 4; ++i) frame();  // a buffer is free
  device_.hold("getRawDataEx");
  ASSERT_TRUE(frames_until([&] { return device_.held(); }));
  const std::string cropped = R"(getDataPropertyInt(data0, 1)
getDataPropertyInt(data0, 2)
getDataPropertyInt(data0, 3)
getDataPtr(data0)
)";
  const auto surface = [](const std::string& data) {
    return "createData()\ndetermineSurface(data0, " + data + ")\ngetDataPropertyInt(" + data +
           ", 1)\ngetDataPropertyInt(" + data + ", 2)\ngetDataPropertyFloat(data0, 3)\ngetDataPtr(" + data +
           ")\nclearData(" + data + ")\n";
  };
  const std::string acquired = "setProcessedDataOutput(processing0, data0)\ngetRawDataEx(device, raw0, 1)\n";
  EXPECT_EQ(device_.calls(),
            "getDevicePropertyFloat(device, 1)\ncreateRawData()\ncreateData()\ncreateData()\n" + measurement +
                acquired +
                "getAnalogInputData(device, data1)\ngetError(512)\nexecuteProcessing(processing0, raw0)\n" +
                sizes_and_ranges + "getDataPtr(data1)\ngetDataPropertyInt(data1, 1)\n" + cropped +
                "getDataPropertyInt(data1, 5)\n" + surface("data2") + acquired +
                R"(executeProcessing(processing0, raw0)
getAnalogInputData(device, data1)
setDataRange(data0, 0.8, 3, 1.5)
getError(512)
)" + cropped + "getDataPropertyInt(data1, 5)\n" +
                surface("data3") + acquired);
  device_.record();
  device_.release();
  stopDataSource(source_);
  const std::string end = device_.calls();
  EXPECT_EQ(end.substr(end.find("stopMeasurement")),
            "stopMeasurement(device)\nclearRawData(raw0)\nclearData(data0)\nclearData(data1)\n");
}

// Everything between the raw data of a volume and its range.
std::string processing(int mode, bool first) {
  static const char* const outputs[] = {"I", "Retardation", "OpticAxis", "DOPU", "Q", "U", "V"};
  if (mode > 8) return "";
  if (mode > 6) {
    const std::string sensor = std::to_string(mode - 7);
    return "setProcessedDataOutput(processing" + sensor + ", data0)\nexecuteProcessing(processing" + sensor +
           ", raw" + sensor + ")\n";
  }
  const std::string threshold = R"(setPolarizationFlag(polarization, 0, 1)
setPolarizationPropertyFloat(polarization, 0, -12.5)
)";
  const std::string dopu = mode != 3 ? "" : R"(setPolarizationPropertyInt(polarization, 0, 5)
setPolarizationPropertyInt(polarization, 1, 7)
setPolarizationPropertyInt(polarization, 2, 9)
)";
  const std::string volumes = "setPolarizationPropertyInt(polarization, 8, 4)\n";
  return R"(setComplexDataOutput(processing0, complex0)
setComplexDataOutput(processing1, complex1)
executeProcessing(processing0, raw0)
executeProcessing(processing1, raw1)
setPolarizationOutput)" +
         std::string(outputs[mode]) + "(polarization, data0)\n" + (first && mode == 0 ? "" : threshold) +
         R"(setPolarizationPropertyInt(polarization, 6, 2)
setPolarizationPropertyInt(polarization, 7, 3)
setPolarizationPropertyInt(polarization, 5, 1)
)" + (first ? volumes + dopu : dopu + volumes) +
         "executePolarizationProcessing(polarization, complex0, complex1)\n";
}

class PolarizationCallsTest : public LiveTest, public testing::WithParamInterface<int> {};

TEST_P(PolarizationCallsTest, EveryMode) {
  const int mode = GetParam();
  device_.record();
  make_polarization_source();
  selectOnlineDataSource_PS(source_, mode);
  setOnlineAveraging_PS(source_, -3, 2, 3, 4);  // less than one counts as one
  setOnlineDOPU_PS(source_, 5, 7, 9, 11);
  setOnlineDataThreshold_PS(source_, -12.5, true);
  setRenderElements(renderer_, mode != 9, 0);
  run(3);
  const std::string raw = "getRawDataEx(device, raw0, 0)\ngetRawDataEx(device, raw1, 1)\n";
  const std::string copied_if_any = mode > 8 ? "" : copied;
  const std::string loop = copied_if_any + raw + processing(mode, false) +
                           (mode > 8 ? "" : "setDataRange(data0, 2, 3, 1.5)\n") + reported;
  EXPECT_EQ(device_.calls(), R"(getDevicePropertyInt(device, 0)
getDevicePropertyFloat(device, 1)
createRawData()
createRawData()
createComplexData()
createComplexData()
createData()
)" + measurement + raw + "getError(512)\n" +
                                 processing(mode, true) + sizes_and_ranges + loop + loop +
                                 R"(stopMeasurement(device)
clearData(data0)
clearComplexData(complex0)
clearComplexData(complex1)
clearRawData(raw0)
clearRawData(raw1)
)");
}

INSTANTIATE_TEST_SUITE_P(Live, PolarizationCallsTest, testing::Range(0, 10));

// The settings that a source begins with, and the rule by which the size before decides over the next one.
TEST_F(DeviceCallsTest, PolarizationSettings) {
  make_polarization_source();
  const auto properties = [&] {
    device_.record();
    run(2);
    std::string found;
    const std::string calls = device_.calls();
    std::istringstream second_volume(calls.substr(calls.rfind("getRawDataEx")));
    for (std::string line; std::getline(second_volume, line);) {
      const auto start = line.find("(polarization, ");
      if (line.find("Property") != std::string::npos && start != std::string::npos) {
        found += line.substr(start + 15, line.size() - start - 16) + "; ";
      }
    }
    return found;
  };
  EXPECT_EQ(properties(), "0, 0; 6, 1; 7, 1; 5, 1; 8, 1; ");
  selectOnlineDataSource_PS(source_, 3);
  EXPECT_EQ(properties(), "0, 0; 6, 1; 7, 1; 5, 1; 0, 3; 1, 3; 2, 3; 8, 1; ");
  setOnlineAveraging_PS(source_, 0, 0, -7, 0);
  setOnlineDOPU_PS(source_, 1, 4, 0, 0);
  EXPECT_EQ(properties(), "0, 0; 6, 1; 7, 1; 5, 1; 0, 1; 1, 4; 2, 0; 8, 1; ");
  setOnlineDOPU_PS(source_, 9, 8, 7, 0);
  EXPECT_EQ(properties(), "0, 0; 6, 1; 7, 1; 5, 1; 0, 3; 1, 8; 2, 3; 8, 1; ");
}

enum class End { thread, none, restart };  // restart: the error is pending when the next measurement begins

struct Failure {
  const char* function;
  int call;
  End end = End::thread;
  std::vector<std::string> messages{function + std::string(" failed")};  // all that the client is to hear
};

std::string name_of(const testing::TestParamInfo<Failure>& info) {
  return info.param.function + std::to_string(info.param.call);
}

class DeviceErrorsTest : public LiveTest, public testing::WithParamInterface<Failure> {
 protected:
  // With all that a source can ask its device for.
  void play() {
    const auto& [function, call, end, messages] = GetParam();
    setRenderElements(renderer_, 1, 1);
    setSizeZ(source_, 8);
    device_.fail(function, call);
    start();
    EXPECT_EQ(pending_error(), "(none)");
    int before = device_.volumes();
    const auto goes_on = [&] { return device_.volumes() > before + 5 && !voxels_.empty(); };
    if (end != End::thread) {
      EXPECT_TRUE(frames_until(goes_on));
      stopDataSource(source_);
    }
    if (end == End::restart) start();
    EXPECT_TRUE(frames_until([&, count = messages.size()] {
      return client_errors.all().size() >= count && device_.objects() == 0;
    }));
    EXPECT_EQ(client_errors.all(), messages);
    // Whoever is not called back reads the first one, later than its thread's end.
    EXPECT_EQ(unread_errors(), messages.empty() ? messages : std::vector{messages.front()});

    before = device_.volumes();
    start();  // without stopDataSource, where the thread has ended by itself
    EXPECT_EQ(pending_error(), "(none)");
    EXPECT_TRUE(frames_until(goes_on));
    EXPECT_TRUE(uniform(voxels_));
    EXPECT_EQ(client_errors.all(), messages);
  }
};

using StandardErrorsTest = DeviceErrorsTest;
using PolarizationErrorsTest = DeviceErrorsTest;

TEST_P(StandardErrorsTest, EndsAsItShall) {
  make_source();
  setOnlineAnalogInputConfiguration(source_, true);
  play();
}

TEST_P(PolarizationErrorsTest, EndsAsItShall) {
  make_polarization_source();
  selectOnlineDataSource_PS(source_, 3);
  play();
}

constexpr const char* insufficient = "Insufficient memory allocated.";

INSTANTIATE_TEST_SUITE_P(
    Live, StandardErrorsTest,
    testing::Values(
        Failure{"createRawData", 1}, Failure{"createData", 1}, Failure{"startMeasurement", 1},
        Failure{"setProcessedDataOutput", 1}, Failure{"getRawDataEx", 1}, Failure{"getAnalogInputData", 1},
        // Nothing was processed: there is less than what is to be drawn.
        Failure{"executeProcessing", 1, End::thread, {insufficient, "executeProcessing failed"}},
        Failure{"getDataPropertyInt", 3, End::thread, {insufficient, "getDataPropertyInt failed"}},
        Failure{"getDataPropertyInt", 5, End::thread, {insufficient, "getDataPropertyInt failed"}},
        Failure{"getDataPropertyFloat", 1, End::none},
        Failure{"getDataPtr", 1, End::none},  // the analog input's
        Failure{"getDataPtr", 2, End::none}, Failure{"getDataPtr", 3, End::none},
        Failure{"createData", 3, End::none}, Failure{"determineSurface", 1, End::none},
        Failure{"setProcessedDataOutput", 2, End::none}, Failure{"getRawDataEx", 2, End::none},
        Failure{"executeProcessing", 2, End::none}, Failure{"getAnalogInputData", 2, End::none},
        Failure{"setDataRange", 1, End::none}, Failure{"getRelativeReferenceIntensity", 1, End::none},
        Failure{"stopMeasurement", 1, End::restart}),
    name_of);

INSTANTIATE_TEST_SUITE_P(
    Live, PolarizationErrorsTest,
    testing::Values(Failure{"createRawData", 2}, Failure{"createComplexData", 1},
                    Failure{"createComplexData", 2}, Failure{"createData", 1}, Failure{"startMeasurement", 1},
                    Failure{"getRawDataEx", 1}, Failure{"getRawDataEx", 2}, Failure{"getRawDataEx", 4},
                    Failure{"setComplexDataOutput", 3}, Failure{"executeProcessing", 3},
                    Failure{"setPolarizationOutputDOPU", 2}, Failure{"setPolarizationFlag", 2},
                    Failure{"setPolarizationPropertyFloat", 2}, Failure{"setPolarizationPropertyInt", 8},
                    Failure{"executePolarizationProcessing", 1}, Failure{"executePolarizationProcessing", 2},
                    Failure{"setDataRange", 1}, Failure{"getRelativeReferenceIntensity", 1},
                    Failure{"determineSurface", 1}, Failure{"stopMeasurement", 1, End::restart}),
    name_of);

class DeviceEndsTest : public LiveTest {};

// A client without functions: the device is asked for the reference intensity once somebody wants to know it, and
// the earliest error waits for its reader over a stop, cut to the reader's room.
TEST_F(DeviceEndsTest, PollingInsteadOfCallbacks) {
  make_source();
  setRefIntensityCallback(source_, nullptr);
  setErrorCallback(source_, nullptr);
  device_.record();
  start();
  ASSERT_TRUE(frames_until([&] { return device_.volumes() > 3; }));
  EXPECT_EQ(device_.calls().find("getRelativeReferenceIntensity"), std::string::npos);
  EXPECT_EQ(getRefIntensity(source_), -1.0);
  EXPECT_TRUE(frames_until([&] { return getRefIntensity(source_) == 0.625; }));

  EXPECT_EQ(unread_errors(), std::vector<std::string>());
  testing::internal::CaptureStderr();
  const int before = device_.volumes();
  device_.fail("executeProcessing", 1);
  EXPECT_TRUE(frames_until([&] { return device_.volumes() > before + 2; }));
  device_.fail("setDataRange", 1);
  EXPECT_TRUE(frames_until([&] { return device_.volumes() > before + 5; }));
  stopDataSource(source_);
  testing::internal::GetCapturedStderr();
  std::array<char, 8> text{"_______"};
  EXPECT_EQ(getDataSourceError(source_, text.data(), 8), OCT_RENDERER_ERROR);
  EXPECT_STREQ(text.data(), "execute");
  EXPECT_EQ(getDataSourceError(source_, text.data(), 8), 0)
      << "the second one came before the first was read";
}

// A device that fails for ever shows no volume of before as if it were a new one, is reported with pauses,
// and is stopped in the middle of one. Without a function the reports go to the standard error stream.
TEST_F(DeviceEndsTest, ADeviceThatFailsForEver) {
  make_source();
  start();
  ASSERT_TRUE(frames_until_shown());
  device_.fail("getRawDataEx", 0);
  ASSERT_TRUE(frames_until([&] { return !client_errors.all().empty(); }));
  const auto shown = [&] {
    unsigned drawn = 0;
    getLiveVolumeCounts(live_, &drawn, nullptr);
    return drawn;
  };
  for (int i = 0; i < 3; ++i) frame();  // what was handed over before
  const unsigned before = shown();
  EXPECT_TRUE(frames_until([&] { return client_errors.all().size() >= 6; }));  // after 10, 20, 40, 80, 160 ms
  EXPECT_LT(client_errors.all().size(), 20U);
  EXPECT_EQ(shown(), before);
  testing::internal::CaptureStderr();
  setErrorCallback(source_, nullptr);
  std::this_thread::sleep_for(std::chrono::milliseconds(1100));
  EXPECT_TRUE(contains(testing::internal::GetCapturedStderr(), "getRawDataEx failed"));
  const auto begin = std::chrono::steady_clock::now();
  stopDataSource(source_);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(300))
      << "the pause is not over";
}

// What OpenGL has no room for ends the thread that waits for it.
TEST_F(DeviceEndsTest, AVolumeBeyondTheDriver) {
  device_.set_size(1'000'000, 1, 1);
  make_source();
  start();
  EXPECT_TRUE(frames_until([&] { return device_.objects() == 0 && !client_errors.all().empty(); }));
  ASSERT_EQ(client_errors.all().size(), 1U);
  EXPECT_TRUE(contains(client_errors.all()[0], "1000000 x 1 x 1 voxels is too large"));
  while (pending_error() != "(none)") {
  }
  frame();
  EXPECT_FALSE(isLiveVolumeRunning(live_)) << "nobody is left that it could show anything of";
  clearDataSource(source_);
  device_.set_size(16, 12, 10);
  make_source();
  start();
  EXPECT_TRUE(frames_until_shown());
}

// The device's volumes shrink and grow while it measures, or are smaller than what is to be kept.
TEST_F(DeviceEndsTest, AnotherSizeEndsTheThread) {
  // What is kept and the new size; 8 of 32 would be enough, if in another place.
  for (const auto& [kept, size] : {std::pair{8, 12}, {16, 12}, {16, 32}, {17, 16}}) {
    device_.set_size(16, 12, 10);
    make_source();
    setSizeZ(source_, kept);
    start();
    if (kept <= 16) {
      EXPECT_TRUE(frames_until_shown());
    }
    device_.set_size(size, 12, 10);
    EXPECT_TRUE(frames_until([&] { return device_.objects() == 0 && !client_errors.all().empty(); }));
    EXPECT_EQ(client_errors.all(), std::vector<std::string>{insufficient});
    client_errors.clear();
    EXPECT_TRUE(isLiveVolumeRunning(live_));
    clearDataSource(source_);
    source_ = nullptr;
  }
}

// An analog input that is smaller than the volume is not read beyond its end.
TEST_F(DeviceEndsTest, AnAnalogInputThatIsTooSmall) {
  for (const bool from_the_start : {true, false}) {
    device_.shorten_analog(from_the_start ? 1 : 0);
    make_source();
    setOnlineAnalogInputConfiguration(source_, true);
    start();
    if (!from_the_start) {
      EXPECT_TRUE(frames_until_shown());
    }
    device_.shorten_analog(1);
    EXPECT_TRUE(frames_until([&] { return device_.objects() == 0 && !client_errors.all().empty(); }));
    EXPECT_EQ(client_errors.all(), std::vector<std::string>{insufficient});
    client_errors.clear();
    clearDataSource(std::exchange(source_, nullptr));
  }
}

// Without a volume renderer a standard source goes no further and counts as running; its stop clears up.
TEST_F(DeviceEndsTest, StandardSourceWithoutVolumeRenderer) {
  const LiveVolumeRenderingHandle bare = createLiveRendering();
  make_source();
  for (int round = 0; round < 2; ++round) {
    device_.record();
    startDataSource(bare, source_, device_.scan_pattern());
    EXPECT_EQ(
        client_errors.at_least(1),
        std::vector<std::string>{
            "Renderer not available for fast volume rendering. Please specify a volume rendering object."});
    EXPECT_TRUE(isLiveVolumeRunning(bare));
    EXPECT_FALSE(isDataSourceRunning(source_));
    EXPECT_FALSE(contains(device_.calls(), "stopMeasurement"));
    start();
    EXPECT_EQ(pending_error(), "BrennickDataSource already running");
    stopDataSource(source_);
    EXPECT_TRUE(contains(device_.calls(), "stopMeasurement"));
    EXPECT_EQ(device_.objects(), 0);
    client_errors.clear();
  }
  clearLiveRendering(bare);
  start();
  EXPECT_TRUE(frames_until_shown());
}

TEST_F(DeviceEndsTest, PolarizationSourceWithoutVolumeRenderer) {
  const LiveVolumeRenderingHandle bare = createLiveRendering();
  make_polarization_source();
  startDataSource(bare, source_, device_.scan_pattern());
  EXPECT_EQ(client_errors.at_least(1),
            std::vector<std::string>{"Volume renderer is null in BrennickDataSourcePS"});
  start();
  EXPECT_TRUE(frames_until_shown());
  clearLiveRendering(bare);
}

// The quantity that a volume shows is its whole part. Modes change while the source runs.
TEST_F(DeviceEndsTest, ModesChangeWithTheNextVolume) {
  make_polarization_source();
  ToldVolumes told;
  told.listen_to(source_);
  start();
  const int quantities[] = {PatternDevice::intensity, 1, 2, 3, 4, 5, 6, PatternDevice::sensor0,
                            PatternDevice::sensor1};
  for (int mode = 8; mode >= 0; --mode) {
    selectOnlineDataSource_PS(source_, mode);
    EXPECT_TRUE(frames_until([&] {
      return !voxels_.empty() && static_cast<int>(voxels_[0]) == quantities[mode];
    })) << mode;
    EXPECT_TRUE(uniform(voxels_));
    EXPECT_TRUE(
        frames_until([&] { return static_cast<int>(told.all().back().samples[0]) == quantities[mode]; }));
  }
  EXPECT_TRUE(client_errors.all().empty());
  stopDataSource(source_);
}

// A source that starts on a live renderer in use takes it over, whatever the size of its volumes: nothing of
// the other one's comes to the screen or to the volume renderer any more, and the end of the other one ends
// nothing.
TEST_F(DeviceEndsTest, ALiveRendererHasOneSource) {
  for (const int kept : {16, 2}) {
    make_polarization_source();
    const LiveDataSourceHandle first = source_;
    selectOnlineDataSource_PS(first, 1);
    start();
    ASSERT_TRUE(frames_until_shown());
    source_ =
        createOnlineDataSource(device_.device(2), device_.processing(2));  // the first has two processings
    on_intensity(nullptr);
    setSizeZ(source_, kept);
    start();
    const auto is_second = [&] {
      return !voxels_.empty() && static_cast<int>(voxels_[0]) == PatternDevice::sensor0;
    };
    ASSERT_TRUE(frames_until(is_second));
    for (int i = 0; i < 20; ++i) {
      frame();
      EXPECT_TRUE(is_second());
      EXPECT_TRUE(uniform(voxels_));
    }
    if (kept == 2) {
      device_.fail("executePolarizationProcessing", 0);
      ASSERT_TRUE(frames_until([&] { return !client_errors.all().empty(); }));
    }
    stopDataSource(first);
    clearDataSource(first);
    frame(), frame();
    EXPECT_TRUE(isLiveVolumeRunning(live_));
    const auto before = intensities.all().size();
    EXPECT_TRUE(frames_until([&] { return intensities.all().size() > before + 3; }));
    EXPECT_TRUE(is_second());
    clearDataSource(std::exchange(source_, nullptr));
    client_errors.clear();
  }
}

// Whoever is cleared first, running, ended by an error or stopped: nobody uses what is gone.
TEST_F(DeviceEndsTest, ALiveRendererIsClearedBeforeItsSource) {
  for (const bool fails : {true, false}) {
    make_source();
    start();
    ASSERT_TRUE(frames_until_shown());
    if (fails) {
      device_.set_size(15, 12, 10);
      ASSERT_TRUE(frames_until([&] { return device_.objects() == 0; }));
    }
    clearLiveRendering(live_);
    EXPECT_TRUE(client_errors.at_least(1).size() == 1);
    live_ = createLiveRendering();
    setLiveVolumeRenderingRenderer(live_, renderer_);
    client_errors.clear();
    device_.set_size(16, 12, 10);
    start();  // on the other one
    EXPECT_TRUE(frames_until_shown());
    clearDataSource(std::exchange(source_, nullptr));
  }
}

// A setting that is made while the device measures holds for that volume.
TEST_F(DeviceEndsTest, PolarizationSettingsAreReadAfterTheVolume) {
  make_polarization_source();
  selectOnlineDataSource_PS(source_, 1);
  start();
  ASSERT_TRUE(frames_until_shown());
  device_.hold("getRawDataEx");
  ASSERT_TRUE(frames_until([&] { return device_.held(); }));
  device_.record();
  selectOnlineDataSource_PS(source_, 5);
  device_.release();
  ASSERT_TRUE(frames_until([&] { return contains(device_.calls(), "executePolarizationProcessing"); }));
  EXPECT_FALSE(contains(device_.calls(), "Retardation"));
}

}  // namespace
}  // namespace oct::test
