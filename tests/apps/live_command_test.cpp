// "octrender live" with the simulated device.
#include <oct_device/oct_simulator.h>

#include <algorithm>
#include <regex>

#include "scene/polarization_mode.h"
#include "program_test.h"

namespace oct::app::test {
namespace {

class LiveCommand : public ProgramTest {
 protected:
  ~LiveCommand() override { EXPECT_EQ(getSimulatedObjectCount(), 0); }

  // A small device, a small picture and a short time, unless the test says otherwise.
  using ProgramTest::run;
  int run(const Arguments& further) override {
    Arguments arguments{"live"};
    const auto add = [&](const std::string& option, const std::string& value) {
      if (std::ranges::find(further, option) == further.end()) arguments = joined(arguments, {option, value});
    };
    add("-o", toUtf8(output_));
    add("--size", "80x60");
    add("--slices", "64");
    add("--ascans", "20");
    add("--bscans", "12");
    add("--seconds", "0.05");
    if (std::ranges::find(further, "--playback") == further.end()) add("--spectrum", "64");
    return runBare(joined(arguments, further));
  }

  // The number behind a word of the report.
  double reported(const std::string& pattern) const {
    std::smatch match;
    if (!std::regex_search(outText_, match, std::regex(pattern + "\\s+([0-9.]+)"))) {
      ADD_FAILURE() << pattern << " is not in " << outText_;
      return -1;
    }
    return std::stod(match[1]);
  }

  // A volume of 8 B-scans, 32 depths and 16 A-scans: 1 where the condition holds.
  template <class Condition>
  void writeWhere(Condition condition) {
    std::vector<float> values;
    for (int b = 0; b < 8; ++b) {
      for (int z = 0; z < 32; ++z) {
        for (int a = 0; a < 16; ++a) values.push_back(condition(z, a, b) ? 1.0f : 0.0f);
      }
    }
    writeNpy(input_, "8, 32, 16", values);
  }
  void writeBrightAbove(int depth) {
    writeWhere([=](int z, int, int) { return z < depth; });
  }
};

const Arguments kFront{"--mode", "maximum", "--angles",   "0",    "0",          "--range",
                       "0",      "1",       "--colormap", "gray", "--no-edges", "--no-labels"};

TEST_F(LiveCommand, ShowsThePhantomAndReports) {
  ASSERT_EQ(run({"--seconds", "0.6"}), 0) << errorText_;
  EXPECT_NE(outText_.find("32 x 20 x 12 samples"), std::string::npos) << outText_;
  EXPECT_GE(reported("time:"), 0.6);
  EXPECT_GE(reported("frames:"), 1);
  const double acquired = reported("acquired:");
  EXPECT_GE(acquired, 1);
  EXPECT_GE(reported("shown:"), 1);
  EXPECT_LE(reported("shown:") + reported("dropped:"), acquired);
  EXPECT_GT(reported("median"), 0);
  EXPECT_LE(reported("median"), reported("worst"));
  const Picture picture = readPicture(output_);
  EXPECT_EQ(picture.size.width, 80u);
  EXPECT_EQ(picture.size.height, 60u);
  // The background has no red; the tissue has.
  EXPECT_GT(redAt(0.5, 0.55), 60);
}

// The picture of the recording is the one that octrender volume draws of the same file. Nothing is bright at
// the border, beyond which the two read differently.
TEST_F(LiveCommand, PlaysAVolumeBackAsOctrenderVolumeDrawsIt) {
  writeWhere([](int z, int a, int b) { return z > 3 && z < 16 && a > 1 && a < 12 && b > 1 && b < 6; });
  ASSERT_EQ(
      run(joined(kFront, {"--playback", toUtf8(input_), "--depth", "2", "--width", "3", "--length", "4"})), 0)
      << errorText_;
  EXPECT_NE(outText_.find("32 x 16 x 8 samples"), std::string::npos) << outText_;
  const std::vector<std::uint8_t> shown = pixels();
  EXPECT_GT(redAt(0.5, 0.42), 200);
  EXPECT_LT(redAt(0.5, 0.6), 50);

  ASSERT_EQ(runBare(joined({"volume", toUtf8(input_), "-o", toUtf8(output_), "--size", "80x60", "--slices",
                            "64", "--extent", "2", "3", "4"},
                           kFront)),
            0)
      << errorText_;
  const std::vector<std::uint8_t> wanted = pixels();
  ASSERT_EQ(shown.size(), wanted.size());
  // The uploaded volume has 16 bits, the live one 32.
  int different = 0;
  for (std::size_t i = 0; i < shown.size(); ++i) different += std::abs(shown[i] - wanted[i]) > 3;
  EXPECT_LE(different, static_cast<int>(shown.size() / 500));
}

// Half the depth samples with half the extent: only the bright part is left, and it fills the box.
TEST_F(LiveCommand, CropsTheDepth) {
  writeBrightAbove(16);
  ASSERT_EQ(run(joined(kFront, {"--playback", toUtf8(input_), "--depth", "4", "--size-z", "16"})), 0)
      << errorText_;
  EXPECT_NE(outText_.find("16 x 16 x 8 samples"), std::string::npos) << outText_;
  EXPECT_GT(redAt(0.5, 0.45), 200);
  EXPECT_GT(redAt(0.5, 0.55), 200);
}

// The refractive index makes the box flatter: what was bright far from the middle is background.
TEST_F(LiveCommand, TheRefractiveIndexFlattensTheBox) {
  writeBrightAbove(32);
  const Arguments arguments = joined(kFront, {"--playback", toUtf8(input_), "--depth", "4"});
  ASSERT_EQ(run(arguments), 0) << errorText_;
  EXPECT_GT(redAt(0.5, 0.4), 200);
  ASSERT_EQ(run(joined(arguments, {"--refractive-index", "8"})), 0) << errorText_;
  EXPECT_LT(redAt(0.5, 0.4), 50);
  EXPECT_GT(redAt(0.5, 0.5), 200);
}

TEST_F(LiveCommand, NumbersItsSnapshots) {
  writeBrightAbove(16);
  ASSERT_EQ(run({"--snapshots", "3", "--seconds", "0.6", "--playback", toUtf8(input_), "--noise", "0.5"}), 0)
      << errorText_;
  EXPECT_FALSE(std::filesystem::exists(output_));
  const Picture first = readPicture(folder_ / "out-000.png");
  readPicture(folder_ / "out-001.png");
  EXPECT_NE(readPicture(folder_ / "out-002.png").pixels, first.pixels);  // other noise
  EXPECT_FALSE(std::filesystem::exists(folder_ / "out-003.png"));
}

TEST_F(LiveCommand, NeedsNoPicture) {
  ASSERT_EQ(runBare({"live", "--size", "40x30", "--ascans", "8", "--bscans", "4", "--spectrum", "64",
                     "--seconds", "0.05"}),
            0)
      << errorText_;
  EXPECT_GE(reported("shown:"), 0);
  EXPECT_EQ(folder_.fileNames().size(), 0u);
}

// Noise differs from volume to volume: these show that the device takes the options, not what they do.
TEST_F(LiveCommand, EveryOptionOfTheDeviceDraws) {
  expectOtherPictures({{"--phantom", "retina"},
                       {"--phantom", "mirror", "--mode", "maximum"},
                       {"--phantom", "target", "--ps", "retardation"},
                       {"--phantom", "target", "--ps", "3", "--averaging", "2", "1", "1", "2"},
                       {"--ps", "intensity"},
                       {"--ps", "sensor1", "--seed", "5"},
                       {"--ps", "q", "--threshold", "30"},
                       {"--motion", "drift", "--seconds", "0.2"},
                       {"--motion", "breathing", "--seconds", "0.2"},
                       {"--seed", "7"}});
}

// A volume that is played back is the same again and again.
TEST_F(LiveCommand, EveryOptionOfTheViewDraws) {
  writeWhere([](int z, int a, int b) { return z > 10 + a / 4 && z < 24 && b > 1; });
  const Arguments still{"--playback", toUtf8(input_)};
  ASSERT_EQ(run(still), 0) << errorText_;
  const std::vector<std::uint8_t> first = pixels();
  ASSERT_EQ(run(still), 0) << errorText_;
  EXPECT_EQ(pixels(), first);
  expectOtherPictures({{"--surface"},
                       {"--analog"},
                       {"--mode", "sections"},
                       {"--colormap", "cividis"},
                       {"--range", "-1", "2"},
                       {"--width", "2"},
                       {"--clip", "0.5"},
                       {"--noise", "0.5"}},
                      still);
  ASSERT_EQ(run(joined(still, {"--analog"})), 0) << errorText_;
  const std::vector<std::uint8_t> analog = pixels();
  ASSERT_EQ(run(joined(still, {"--analog", "--analog-channel", "1"})), 0) << errorText_;
  EXPECT_NE(pixels(), analog);
}

// 240 A-scans per volume: ten volumes per second.
TEST_F(LiveCommand, KeepsToTheRate) {
  ASSERT_EQ(run({"--rate", "2400", "--seconds", "0.5"}), 0) << errorText_;
  EXPECT_LE(reported("acquired:"), 10 * reported("time:") + 2);
}

TEST_F(LiveCommand, RefusesWhatMakesNoSense) {
  expectFailure(2, {"--ps", "9"}, "--ps");
  expectFailure(2, {"--ps", "phase"}, "--ps");
  expectFailure(2, {"--phantom", "frog"}, "--phantom");
  expectFailure(2, {"--motion", "fast"}, "--motion");
  expectFailure(2, {"--analog", "--mode", "mean"}, "--analog");
  expectFailure(2, {"--analog", "--ps", "0"}, "--analog");
  expectFailure(2, {"--threshold", "30"}, "--ps");
  expectFailure(2, {"--noise", "1"}, "--playback");
  expectFailure(2, {"--size-z", "0"}, "--size-z");
  expectFailure(2, {"--seconds", "0"}, "--seconds");
  expectFailure(2, {"--snapshots", "0"}, "--snapshots");
  expectFailure(2, {"--refractive-index", "0"}, "--refractive-index");
  expectFailure(2, {"--playback", toUtf8(input_), "--ps", "0"}, "--ps");
  expectFailure(2, {"--playback", toUtf8(input_), "--motion", "drift"}, "--motion");
  expectFailure(2, {"-o", file("out.jpg")}, ".png");
  expectFailure(3, {"--playback", file("none.npy")}, "none.npy");
  expectFailure(5, {"--spectrum", "65"}, "even");
  expectFailure(5, {"--size-z", "33"}, "Insufficient memory allocated.");
}

// The rendering library has the wrong functions for a device.
TEST_F(LiveCommand, NamesALibraryThatDoesNotServe) {
  expectFailure(5, {"--device-library", "no_such_device"}, "'no_such_device' cannot be loaded");
  expectFailure(5, {"--device-library", "oct_rendering"}, "has no function \"createSimulatedDevice\"");
}

// Errors at the first volume and later ones; of one sensor and of two.
TEST_F(LiveCommand, AnErrorOfTheDeviceEndsIt) {
  writeBrightAbove(16);
  struct Case {
    const char* function;
    int call;
    Arguments options;
  };
  const std::vector<Case> cases{{"getRawDataEx", 1, {"--range", "0", "60"}},
                                {"getRawDataEx", 4, {"--range", "0", "60"}},
                                {"startMeasurement", 1, {"--range", "0", "60"}},
                                {"executeProcessing", 3, {"--range", "0", "60"}},
                                {"getRawDataEx", 1, {}},
                                {"executePolarizationProcessing", 4, {"--ps", "1", "--threshold", "20"}}};
  for (const Case& one : cases) {
    SCOPED_TRACE(one.function);
    failSimulatedCall(one.function, one.call, "The lamp is broken. ");
    expectFailure(5, joined(one.options, {"--seconds", "60"}),
                  std::string(one.function) + ": The lamp is broken. ");
    clearSimulatedFailures();
  }
  EXPECT_EQ(run(), 0) << errorText_;  // and the next run works
}

TEST(PolarizationMode, NamesAndNumbers) {
  EXPECT_EQ(parsePolarizationMode("0"), PolarizationMode::Intensity);
  EXPECT_EQ(parsePolarizationMode("retardation"), PolarizationMode::Retardation);
  EXPECT_EQ(parsePolarizationMode("optic-axis"), PolarizationMode::OpticAxis);
  EXPECT_EQ(parsePolarizationMode("3"), PolarizationMode::Dopu);
  EXPECT_EQ(parsePolarizationMode("v"), PolarizationMode::StokesV);
  EXPECT_EQ(parsePolarizationMode("sensor1"), PolarizationMode::Sensor1);
  EXPECT_EQ(parsePolarizationMode("8"), PolarizationMode::Sensor1);
  EXPECT_FALSE(naturalRange(PolarizationMode::Sensor0));
  EXPECT_EQ(naturalRange(PolarizationMode::Retardation)->upper, 90);
}

}  // namespace
}  // namespace oct::app::test
