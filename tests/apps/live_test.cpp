// "octrender live" with the simulated device.
#include <tuple>

#include "apps/program_test.h"
#include "oct_simulator/oct_simulator.h"
#include "octrender/option_values.h"

namespace oct::app::test {
namespace {

// A small device, a small picture and a short time, unless the test says otherwise.
class Live : public ProgramTest {
 protected:
  Live() : ProgramTest("live -o out.png --size 80x60 --slices 64 --ascans 20 --bscans 12") {}
  ~Live() override { EXPECT_EQ(getSimulatedObjectCount(), 0); }

  // The number behind words of the report.
  double reported(const std::string& words) const {
    expect_in(words, out_text_);
    return std::atof(out_text_.c_str() + out_text_.find(words) + words.size());
  }

  template <class Condition>
  static void write_where(Condition condition) {
    write_npy("in.npy", "8, 32, 16", volume_where(32, 16, 8, condition));
  }
};

const std::string short_run = " --seconds 0.05 --spectrum 64 ";
const std::string playback = " --seconds 0.05 --playback in.npy ";
const std::string seen_live =
    "--mode maximum --angles 0 0 --range 0 1 --colormap gray --no-edges --no-labels ";

TEST_F(Live, ShowsThePhantomAndReports) {
  draw("--seconds 0.6 --spectrum 64");
  expect_in("32 x 20 x 12 samples", out_text_);
  EXPECT_GE(reported("time:"), 0.6);
  EXPECT_GE(reported("frames:"), 1);
  EXPECT_GE(reported("shown:"), 1);
  EXPECT_LE(reported("shown:") + reported("dropped:"), reported("acquired:"));
  EXPECT_GT(reported("median"), 0);
  EXPECT_LE(reported("median"), reported("worst"));
  EXPECT_LE(reported("99th percentile"), reported("worst"));
  EXPECT_EQ(error_text_, "");
  // The background has no red; the tissue has.
  EXPECT_GT(red_at(0.5, 0.55), 60);
  // 240 A-scans per volume: ten volumes per second, those before the first frame included. Without the rate hundreds.
  ASSERT_EQ(run_bare("live --size 40x30 --ascans 20 --bscans 12 --spectrum 64 --rate 2400 --seconds 0.5"), 0);
  EXPECT_LE(reported("acquired:"), 10 * reported("time:") + 30);
  ASSERT_EQ(run("--json --seconds 0.3 --spectrum 64"), 0) << error_text_;
  expect_in("{\"size\": [32, 20, 12], \"seconds\": ", out_text_);
  EXPECT_GE(reported("\"shown\": "), 1);
  EXPECT_EQ(reported("\"by_driver\": "), 0);
  EXPECT_LE(reported("\"median\": "), reported("\"worst\": "));
}

// The picture of the recording is the one that octrender volume draws of the same file. Nothing is bright at
// the border, beyond which the two read differently.
TEST_F(Live, PlaysAVolumeBackAsOctrenderVolumeDrawsIt) {
  write_where([](int z, int a, int b) { return z > 3 && z < 16 && a > 1 && a < 12 && b > 1 && b < 6; });
  const std::vector<std::uint8_t> shown = draw(seen_live + playback + "--depth 2 --width 3 --length 4");
  expect_in("32 x 16 x 8 samples", out_text_);
  EXPECT_GT(red_at(0.5, 0.42), 200);
  ASSERT_EQ(run_bare("volume in.npy -o out.png --size 80x60 --slices 64 --extent 2 3 4 " + seen_live), 0)
      << error_text_;
  const std::vector<std::uint8_t> wanted = read_picture("out.png").pixels;
  ASSERT_EQ(shown.size(), wanted.size());
  // The uploaded volume has 16 bits, the live one 32.
  std::size_t different = 0;
  for (std::size_t i = 0; i < shown.size(); ++i) different += std::abs(shown[i] - wanted[i]) > 3;
  EXPECT_LE(different, shown.size() / 500);
}

TEST_F(Live, CropsAndFlattensTheBox) {
  // Half the depth samples with half the extent: only the bright part is left, and it fills the box.
  write_where([](int z, int, int) { return z < 16; });
  draw(seen_live + playback + "--depth 4 --size-z 16");
  expect_in("16 x 16 x 8 samples", out_text_);
  EXPECT_GT(red_at(0.5, 0.45), 200);
  EXPECT_GT(red_at(0.5, 0.55), 200);
  // What was bright far from the middle is background.
  write_where([](int, int, int) { return true; });
  draw(seen_live + playback + "--depth 4");
  EXPECT_GT(red_at(0.5, 0.4), 200);
  draw(seen_live + playback + "--depth 4 --refractive-index 8");
  EXPECT_LT(red_at(0.5, 0.4), 50);
  EXPECT_GT(red_at(0.5, 0.5), 200);
}

TEST_F(Live, NumbersItsSnapshots) {
  write_where([](int z, int, int) { return z < 16; });
  ASSERT_EQ(run("--snapshots 3 --seconds 0.6 --playback in.npy --noise 0.5"), 0) << error_text_;
  EXPECT_FALSE(std::filesystem::exists("out.png"));
  EXPECT_TRUE(std::filesystem::exists("out-001.png"));
  EXPECT_NE(read_picture("out-002.png").pixels, read_picture("out-000.png").pixels);  // other noise
  EXPECT_FALSE(std::filesystem::exists("out-003.png"));
}

// Noise differs from volume to volume: these show that the device takes the options, not what they do.
TEST_F(Live, EveryOptionOfTheDeviceDraws) {
  expect_other_pictures(
      short_run, {"--phantom retina", "--phantom mirror --mode maximum", "--phantom target --ps retardation",
                  "--phantom target --ps 3 --averaging 2 1 1 2", "--ps intensity", "--ps sensor1 --seed 5",
                  "--ps q --threshold 30", "--motion drift", "--motion breathing", "--seed 7"});
}

// A volume that is played back is the same again and again.
TEST_F(Live, EveryOptionOfTheViewDrawsAnotherPicture) {
  write_where([](int z, int a, int b) { return z > 10 + a / 4 && z < 24 && b > 1; });
  EXPECT_EQ(draw(playback), draw(playback));
  expect_other_pictures(playback,
                        {"--surface", "--analog", "--analog --analog-channel 1", "--mode sections",
                         "--colormap cividis", "--range -1 2", "--width 2", "--clip 0.5", "--noise 0.5"});
}

TEST_F(Live, RefusesWhatMakesNoSense) {
  expect_wrong("--ps", {"9", "phase", "0 --playback in.npy"});
  expect_wrong("--phantom", {"frog"});
  expect_wrong("--motion", {"fast", "drift --playback in.npy"});
  expect_wrong("--analog", {"--mode mean", "--ps 0"});
  for (const char* const option : {"--size-z", "--seconds", "--snapshots", "--refractive-index"}) {
    expect_wrong(option, {"0"});
  }
  expect_error(2, "--threshold 30", "--ps");
  expect_error(2, "--noise 1", "--playback");
  EXPECT_EQ(run_bare("live -o out.jpg"), 2);
  expect_error(3, "--playback none.npy", "none.npy");
  expect_error(5, "--spectrum 65", "even");
  expect_error(5, "--spectrum 64 --size-z 33", "Insufficient memory allocated.");
  expect_error(5, "--device-library no_such_device", "'no_such_device' cannot be loaded");
  // The rendering library has the wrong functions for a device.
  expect_error(5, "--device-library oct_rendering", "has no function \"createSimulatedDevice\"");
}

// Errors at the first volume and later ones; of one sensor and of two.
TEST_F(Live, AnErrorOfTheDeviceEndsIt) {
  const std::tuple<std::string, int, std::string> cases[] = {
      {"getRawDataEx", 1, "--range 0 60"},
      {"getRawDataEx", 4, "--range 0 60"},
      {"startMeasurement", 1, "--range 0 60"},
      {"executeProcessing", 3, "--range 0 60"},
      {"getRawDataEx", 1, ""},
      {"executePolarizationProcessing", 4, "--ps 1 --threshold 20"}};
  for (const auto& [function, call, options] : cases) {
    failSimulatedCall(function.c_str(), call, "The lamp is broken. ");
    expect_error(5, "--seconds 60 --spectrum 64 " + options, function + ": The lamp is broken. ");
    clearSimulatedFailures();
  }
  EXPECT_EQ(run(short_run), 0) << error_text_;  // and the next run works
}

TEST(PolarizationModes, HaveNamesAndNumbers) {
  EXPECT_EQ(parse_polarization_mode("optic-axis"), PolarizationMode::optic_axis);
  EXPECT_EQ(parse_polarization_mode("v"), PolarizationMode::stokes_v);
  EXPECT_EQ(parse_polarization_mode("3"), PolarizationMode::dopu);
  EXPECT_EQ(parse_polarization_mode("sensor1"), parse_polarization_mode("8"));
  EXPECT_FALSE(natural_range(PolarizationMode::sensor0));
  EXPECT_EQ(natural_range(PolarizationMode::retardation)->upper, 90);
}

}  // namespace
}  // namespace oct::app::test
