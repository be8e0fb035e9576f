// The exact sequence of calls that a source makes into the device library.
#include "live/live_test.h"
#include "support/test_context.h"

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
  EXPECT_EQ(intensities().all(), std::vector<double>(2, 0.625));
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
                surface("data2") + acquired + R"(executeProcessing(processing0, raw0)
getAnalogInputData(device, data1)
setDataRange(data0, 0.8, 3, 1.5)
getError(512)
)" + cropped + surface("data3") +
                acquired);
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

}  // namespace
}  // namespace oct::test
