// "octrender volume" and "octrender info".
#include "program_test.h"

namespace oct::app::test {
namespace {

// A volume of three axes (B-scan, depth, A-scan), 1 where the condition holds.
template <class Condition>
std::vector<float> volumeWhere(Condition condition) {
  std::vector<float> values;
  for (int i = 0; i < 5 * 6 * 4; ++i) values.push_back(condition(i / 4 % 6, i % 4, i / 24) ? 1.0f : 0.0f);
  return values;
}

class Volume : public ProgramTest {
 protected:
  Volume() : ProgramTest("volume in.npy -o out.png --size 80x60") {
    write(volumeWhere([](int z, int, int) { return z < 3; }));
  }
  static void write(const std::vector<float>& values) { writeNpy("in.npy", "5, 6, 4", values); }
};

const std::string kFront = "--mode maximum --angles 0 0 --range 0 1 --colormap gray --no-edges ";

TEST_F(Volume, DepthRunsDownAndAscansToTheRight) {
  draw(kFront);
  EXPECT_GT(redAt(0.5, 0.35), 200);
  EXPECT_LT(redAt(0.5, 0.65), 50);
  write(volumeWhere([](int, int a, int) { return a >= 2; }));
  draw(kFront);
  EXPECT_LT(redAt(0.42, 0.5), 50);
  EXPECT_GT(redAt(0.58, 0.5), 200);
}

// From the front the last B-scan is next to the viewer: an opaque one hides what lies behind.
TEST_F(Volume, BscansRunTowardsTheViewer) {
  std::vector<float> values = volumeWhere([](int, int, int b) { return b >= 3; });
  for (float& value : values) value = std::max(value, 0.5f);
  write(values);
  writeFile("map.csv", "0,0,0,0\n0,0,255,255\n255,0,0,255\n");
  draw("--angles 0 0 --range 0 1 --colormap map.csv --no-edges");
  EXPECT_GT(redAt(0.5, 0.5), 200);
}

TEST_F(Volume, RawSamplesGiveTheSamePicture) {
  const std::vector<float> values = volumeWhere([](int z, int a, int b) { return z < 3 && a > 1 && b > 0; });
  write(values);
  const std::vector<std::uint8_t> wanted = draw(kFront);
  std::vector<float> raw;  // depth fastest, B-scans slowest
  for (std::size_t i = 0; i < values.size(); ++i) raw.push_back(values[i / 24 * 24 + i % 6 * 4 + i / 6 % 4]);
  for (const auto& [type, bytes] : {std::pair{"f4", bytesOf(raw)},
                                    {"u2", bytesOf(std::vector<std::uint16_t>(raw.begin(), raw.end()))},
                                    {"u1", bytesOf(std::vector<std::uint8_t>(raw.begin(), raw.end()))}}) {
    writeFile("in.npy", bytes);
    EXPECT_EQ(draw(kFront + "--raw 6x4x5:" + type), wanted) << type;
  }
}

TEST_F(Volume, EveryOptionDrawsAnotherPicture) {
  write(volumeWhere([](int z, int a, int) { return z < 3 && a < 2; }));
  writeNpy("heights.npy", "5, 4", std::vector<float>(20, 2.0f));
  expectOtherPictures(
      "", {"--mode mean", "--mode sections --sections 0.2 off 1", "--clip 0.5", "--clip 0.5 --clip-open",
           "--clip 0.5 --clip-ghost", "--orthographic", "--zoom 20", "--extent 1 2 3", "--opacity 0.9",
           "--reverse", "--surface heights.npy --surface-only", "--overlay in.npy", "--box", "--no-edges",
           "--background FFFFFF FFFFFF", "--foreground 00FF00", "--transpose"});
  std::filesystem::remove("out.png");
  ASSERT_EQ(run("--turntable 4 --mode maximum"), 0) << errorText_;
  EXPECT_FALSE(std::filesystem::exists("out.png"));
  EXPECT_NE(readPicture("out-000.png").pixels, readPicture("out-001.png").pixels);
  EXPECT_NE(readPicture("out-002.png").pixels, readPicture("out-003.png").pixels);
  EXPECT_FALSE(std::filesystem::exists("out-004.png"));
}

TEST_F(Volume, ASecondaryMapColoursTheVolume) {
  write(volumeWhere([](int, int, int) { return true; }));
  writeFile("map.csv", "255,0,0\n0,0,255\n");
  writeNpy("map.npy", "1, 2", {3.0f, 7.0f});  // of a size of its own, along the A-scans
  draw(
      "--angles 0 0 --range 0 1 --opacity 1 --no-edges --secondary map.npy --secondary-range 3 7 "
      "--secondary-colormap map.csv");
  EXPECT_GT(redAt(0.42, 0.5), 200);
  EXPECT_LT(redAt(0.58, 0.5), 50);
}

TEST_F(Volume, RefusesWhatMakesNoSense) {
  expectWrong("--mode", {"dual"});
  expectWrong("--raw", {"6x4:f4", "0x4x5:f4", "65537x4x5:f4", "6x4x5:f8", "6x4x5"});
  expectWrong("--sections", {"0.5 1.5 0.5"});
  expectWrong("--extent", {"1 0 1"});
  expectWrong("--clip", {"1.5"});
  expectWrong("--turntable", {"1"});
  expectWrong("--secondary", {"in.npy --mode mean", "in.npy --overlay in.npy"});
  expectError(2, "--clip-open", "--clip");
  expectError(2, "--secondary-range 0 1", "--secondary");
  expectError(3, "--raw 6x4x6:f4", " bytes; --raw describes 576");
  expectError(3, "--overlay none.npy", "none.npy");
  expectError(3, "--secondary none.npy", "none.npy");
  for (const char* const shape : {"3, 6, 4", "5, 6, 3"}) {
    writeNpy("other.npy", shape, std::vector<float>(90));
    expectError(3, "--overlay other.npy", "another size");
  }
  writeNpy("heights.npy", "4, 5", std::vector<float>(20));
  expectError(3, "--surface heights.npy", "5 B-scans of 4 A-scans");
  writeNpy("in.npy", "6, 4", std::vector<float>(24));
  expectError(
      3, "",
      "this is one image; a volume has three axes (B-scan, depth, A-scan). Draw it with octrender bscan");
  writeFile("in.npy", std::string(70000, 'a'));
  expectError(1, "--raw 35000x1x2:u1", "35000 x 1 x 2 voxels is too large");
}

TEST_F(Volume, InfoTellsDriverAndLimits) {
  ASSERT_EQ(runBare("info in.npy"), 0) << errorText_;
  for (const char* const words :
       {"OpenGL", "driver", "voxels a side", "depth 6, A-scans 4, B-scans 5", "fits"}) {
    expectIn(words, outText_);
  }
  EXPECT_EQ(runBare("info none.npy"), 3);
}

}  // namespace
}  // namespace oct::app::test
