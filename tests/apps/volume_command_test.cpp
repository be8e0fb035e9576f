// "octrender volume" and "octrender info".
#include "program_test.h"
#include "data/volume.h"

namespace oct::app::test {
namespace {

constexpr int kDepth = 6;
constexpr int kAscans = 4;
constexpr int kBscans = 5;

// A volume of three axes (B-scan, depth, A-scan), 1 where the condition holds.
template <class Condition>
std::vector<float> volumeWhere(Condition condition) {
  std::vector<float> values;
  for (int b = 0; b < kBscans; ++b) {
    for (int z = 0; z < kDepth; ++z) {
      for (int a = 0; a < kAscans; ++a) values.push_back(condition(z, a, b) ? 1.0f : 0.0f);
    }
  }
  return values;
}

class VolumeCommand : public ProgramTest {
 protected:
  VolumeCommand() {
    write(volumeWhere([](int z, int, int) { return z < kDepth / 2; }));
  }

  void write(const std::vector<float>& values) { writeNpy(input_, "5, 6, 4", values); }

  using ProgramTest::run;
  int run(const Arguments& further) override {
    return runBare(joined({"volume", toUtf8(input_), "-o", toUtf8(output_), "--size", "80x60"}, further));
  }
};

const Arguments kFront{"--mode", "maximum", "--angles",   "0",    "0",         "--range",
                       "0",      "1",       "--colormap", "gray", "--no-edges"};

TEST_F(VolumeCommand, DepthRunsDownAndAscansToTheRight) {
  ASSERT_EQ(run(kFront), 0) << errorText_;
  const Picture picture = readPicture(output_);
  EXPECT_EQ(picture.size.width, 80u);
  EXPECT_EQ(picture.size.height, 60u);
  EXPECT_GT(redAt(0.5, 0.35), 200);
  EXPECT_LT(redAt(0.5, 0.65), 50);
  write(volumeWhere([](int, int a, int) { return a >= kAscans / 2; }));
  ASSERT_EQ(run(kFront), 0) << errorText_;
  EXPECT_LT(redAt(0.42, 0.5), 50);
  EXPECT_GT(redAt(0.58, 0.5), 200);
}

// From the front the last B-scan is next to the viewer: an opaque one hides what lies behind.
TEST_F(VolumeCommand, BscansRunTowardsTheViewer) {
  std::vector<float> values = volumeWhere([](int, int, int b) { return b >= 3; });
  for (float& value : values) value = std::max(value, 0.5f);
  write(values);
  writeFile(folder_ / "map.csv", "0,0,0,0\n0,0,255,255\n255,0,0,255\n");
  ASSERT_EQ(run({"--angles", "0", "0", "--range", "0", "1", "--colormap", file("map.csv"), "--no-edges"}), 0)
      << errorText_;
  EXPECT_GT(redAt(0.5, 0.5), 200);
}

TEST_F(VolumeCommand, RawSamplesGiveTheSamePicture) {
  ASSERT_EQ(run(kFront), 0);
  const std::vector<std::uint8_t> wanted = pixels();
  const VolumeData volume = loadVolume(input_, false, {});
  EXPECT_EQ(volume.depth, 6u);
  EXPECT_EQ(volume.ascans, 4u);
  EXPECT_EQ(volume.bscans, 5u);
  for (const std::string type : {"f4", "u2", "u1"}) {
    const std::vector<float>& voxels = volume.voxels;
    std::string bytes = bytesOf(voxels);
    if (type == "u2") bytes = bytesOf(std::vector<std::uint16_t>(voxels.begin(), voxels.end()));
    if (type == "u1") bytes = bytesOf(std::vector<std::uint8_t>(voxels.begin(), voxels.end()));
    writeFile(input_, bytes);
    ASSERT_EQ(run(joined(kFront, {"--raw", "6x4x5:" + type})), 0) << errorText_;
    EXPECT_EQ(pixels(), wanted) << type;
  }
}

TEST_F(VolumeCommand, ATurntableNumbersItsPictures) {
  write(volumeWhere([](int z, int a, int) { return z < 3 && a < 2; }));
  ASSERT_EQ(run({"--turntable", "4", "--mode", "maximum"}), 0) << errorText_;
  EXPECT_FALSE(std::filesystem::exists(output_));
  const Picture first = readPicture(folder_ / "out-000.png");
  for (const char* const name : {"out-001.png", "out-002.png", "out-003.png"}) {
    EXPECT_NE(readPicture(folder_ / name).pixels, first.pixels) << name;
  }
  EXPECT_FALSE(std::filesystem::exists(folder_ / "out-004.png"));
}

TEST_F(VolumeCommand, EveryOptionDraws) {
  writeNpy(folder_ / "heights.npy", "5, 4", std::vector<float>(20, 2.0f));
  expectOtherPictures({{"--mode", "mean"},
                       {"--mode", "sections", "--sections", "0.2", "off", "1"},
                       {"--clip", "0.5"},
                       {"--clip", "0.5", "--clip-open"},
                       {"--clip", "0.5", "--clip-ghost"},
                       {"--orthographic"},
                       {"--zoom", "20"},
                       {"--extent", "1", "2", "3"},
                       {"--opacity", "0.9"},
                       {"--reverse"},
                       {"--surface", file("heights.npy"), "--surface-only"},
                       {"--overlay", toUtf8(input_)},
                       {"--box"},
                       {"--no-edges"},
                       {"--background", "FFFFFF", "FFFFFF"},
                       {"--foreground", "00FF00"},
                       {"--transpose"}});
}

TEST_F(VolumeCommand, ASecondaryMapColoursTheVolume) {
  write(volumeWhere([](int, int, int) { return true; }));
  writeFile(folder_ / "map.csv", "255,0,0\n0,0,255\n");
  writeNpy(folder_ / "secondary.npy", "1, 2", {3.0f, 7.0f});  // of a size of its own, along the A-scans
  const Arguments colored{"--secondary-range", "3", "7", "--secondary-colormap", file("map.csv")};
  ASSERT_EQ(run(joined({"--angles", "0", "0", "--range", "0", "1", "--opacity", "1", "--no-edges",
                        "--secondary", file("secondary.npy")},
                       colored)),
            0)
      << errorText_;
  EXPECT_GT(redAt(0.42, 0.5), 200);
  EXPECT_LT(redAt(0.58, 0.5), 50);
  std::filesystem::remove(output_);
  expectFailure(2, {"--secondary", file("secondary.npy"), "--mode", "mean"}, "--secondary");
  expectFailure(2, {"--secondary", file("secondary.npy"), "--overlay", toUtf8(input_)}, "--overlay");
  expectFailure(2, {"--secondary-range", "0", "1"}, "--secondary");
  expectFailure(3, {"--secondary", file("none.npy")}, "none.npy");
}

TEST_F(VolumeCommand, RefusesWhatMakesNoSense) {
  expectFailure(2, {"--mode", "dual"}, "--mode");
  expectFailure(2, {"--raw", "6x4:f4"}, "--raw");
  expectFailure(2, {"--raw", "0x4x5:f4"}, "--raw");
  expectFailure(2, {"--raw", "6x4x5:f8"}, "--raw");
  expectFailure(2, {"--sections", "0.5", "1.5", "0.5"}, "--sections");
  expectFailure(2, {"--extent", "1", "0", "1"}, "--extent");
  expectFailure(2, {"--clip", "1.5"}, "--clip");
  expectFailure(2, {"--clip-open"}, "--clip");
  expectFailure(2, {"--turntable", "1"}, "--turntable");
  expectFailure(3, {"--raw", "6x4x6:f4"}, "bytes");
  expectFailure(3, {"--overlay", file("none.npy")}, "none.npy");
  writeNpy(folder_ / "other.npy", "5, 6, 3", std::vector<float>(90));
  expectFailure(3, {"--overlay", file("other.npy")}, "another size");
  writeNpy(folder_ / "heights.npy", "4, 5", std::vector<float>(20));
  expectFailure(3, {"--surface", file("heights.npy")}, "5 B-scans of 4 A-scans");
  writeNpy(input_, "6, 4", std::vector<float>(24));
  expectFailure(3, {}, "octrender bscan");
  writeFile(input_, std::string(70000, 'a'));
  expectFailure(1, {"--raw", "35000x1x2:u1"}, "35000 x 1 x 2 voxels is too large");
}

TEST_F(VolumeCommand, InfoTellsDriverAndLimits) {
  ASSERT_EQ(runBare({"info"}), 0) << errorText_;
  for (const char* const word : {"OpenGL", "driver", "largest volume", "voxels a side"}) {
    EXPECT_NE(outText_.find(word), std::string::npos) << word;
  }
  ASSERT_EQ(runBare({"info", toUtf8(input_)}), 0) << errorText_;
  EXPECT_NE(outText_.find("depth 6, A-scans 4, B-scans 5"), std::string::npos) << outText_;
  EXPECT_NE(outText_.find("fits"), std::string::npos);
  EXPECT_EQ(runBare({"info", file("none.npy")}), 3);
}

}  // namespace
}  // namespace oct::app::test
