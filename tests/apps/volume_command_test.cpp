// "octrender volume" and "octrender info".
#include "bscan_test_base.h"
#include "volume_data.h"

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

class VolumeCommand : public BscanTest {
 protected:
  VolumeCommand() {
    write(volumeWhere([](int z, int, int) { return z < kDepth / 2; }));
  }

  void write(const std::vector<float>& values) { writeNpy(input_, "5, 6, 4", values); }

  int draw(const std::vector<std::string>& further = {}) {
    std::vector<std::string> arguments{"volume", toUtf8(input_), "-o", toUtf8(output_), "--size", "80x60"};
    arguments.insert(arguments.end(), further.begin(), further.end());
    return runBare(arguments);
  }

  void expectFailure(int code, const std::vector<std::string>& further, const std::string& words) {
    SCOPED_TRACE(words);
    EXPECT_EQ(draw(further), code);
    EXPECT_NE(errorText_.find(words), std::string::npos) << errorText_;
    EXPECT_FALSE(std::filesystem::exists(output_));
  }

  // Red of the picture at a fraction of its width and height, from the top left.
  int redAt(double x, double y) const {
    const Picture picture = readPicture(output_);
    const auto column = static_cast<std::size_t>(x * picture.size.width);
    const auto row = static_cast<std::size_t>(y * picture.size.height);
    return picture.pixels[(row * picture.size.width + column) * 3];
  }
};

const std::vector<std::string> kFront{"--mode", "maximum", "--angles",   "0",    "0",         "--range",
                                      "0",      "1",       "--colormap", "gray", "--no-edges"};

TEST_F(VolumeCommand, DepthRunsDown) {
  ASSERT_EQ(draw(kFront), 0) << errorText_;
  const Picture picture = readPicture(output_);
  EXPECT_EQ(picture.size.width, 80u);
  EXPECT_EQ(picture.size.height, 60u);
  EXPECT_GT(redAt(0.5, 0.35), 200);
  EXPECT_LT(redAt(0.5, 0.65), 50);
}

TEST_F(VolumeCommand, AscansRunToTheRight) {
  write(volumeWhere([](int, int a, int) { return a >= kAscans / 2; }));
  ASSERT_EQ(draw(kFront), 0) << errorText_;
  EXPECT_LT(redAt(0.42, 0.5), 50);
  EXPECT_GT(redAt(0.58, 0.5), 200);
}

// From the front the last B-scan is next to the viewer: an opaque one hides what lies behind.
TEST_F(VolumeCommand, BscansRunTowardsTheViewer) {
  std::vector<float> values = volumeWhere([](int, int, int) { return false; });
  for (int b = 0; b < kBscans; ++b) {
    for (int i = 0; i < kDepth * kAscans; ++i) {
      values[static_cast<std::size_t>(b * kDepth * kAscans + i)] = b >= 3 ? 1.0f : 0.5f;
    }
  }
  write(values);
  writeFile(folder_ / "map.csv", "0,0,0,0\n0,0,255,255\n255,0,0,255\n");
  ASSERT_EQ(draw({"--angles", "0", "0", "--range", "0", "1", "--colormap", file("map.csv"), "--no-edges"}), 0)
      << errorText_;
  EXPECT_GT(redAt(0.5, 0.5), 200);
}

TEST_F(VolumeCommand, RawSamplesGiveTheSamePicture) {
  ASSERT_EQ(draw(kFront), 0);
  const Picture wanted = readPicture(output_);
  const VolumeData volume = loadVolume(input_, false, {});
  EXPECT_EQ(volume.depth, 6u);
  EXPECT_EQ(volume.ascans, 4u);
  EXPECT_EQ(volume.bscans, 5u);
  for (const std::string type : {"f4", "u2", "u1"}) {
    std::string bytes;
    for (const float voxel : volume.voxels) {
      if (type == "f4") bytes += bytesOf(std::vector<float>{voxel});
      if (type == "u2") bytes += bytesOf(std::vector<std::uint16_t>{static_cast<std::uint16_t>(voxel)});
      if (type == "u1") bytes += bytesOf(std::vector<std::uint8_t>{static_cast<std::uint8_t>(voxel)});
    }
    writeFile(input_, bytes);
    std::vector<std::string> arguments = kFront;
    arguments.insert(arguments.end(), {"--raw", "6x4x5:" + type});
    ASSERT_EQ(draw(arguments), 0) << errorText_;
    EXPECT_EQ(readPicture(output_).pixels, wanted.pixels) << type;
  }
}

TEST_F(VolumeCommand, ATurntableNumbersItsPictures) {
  write(volumeWhere([](int z, int a, int) { return z < 3 && a < 2; }));
  ASSERT_EQ(draw({"--turntable", "4", "--mode", "maximum"}), 0) << errorText_;
  EXPECT_FALSE(std::filesystem::exists(output_));
  const Picture first = readPicture(folder_ / "out-000.png");
  for (const char* const name : {"out-001.png", "out-002.png", "out-003.png"}) {
    EXPECT_NE(readPicture(folder_ / name).pixels, first.pixels) << name;
  }
  EXPECT_FALSE(std::filesystem::exists(folder_ / "out-004.png"));
}

TEST_F(VolumeCommand, EveryOptionDraws) {
  writeNpy(folder_ / "heights.npy", "5, 4", std::vector<float>(20, 2.0f));
  ASSERT_EQ(draw(), 0) << errorText_;
  const std::vector<std::uint8_t> plain = readPicture(output_).pixels;
  const std::vector<std::vector<std::string>> options{{"--mode", "mean"},
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
                                                      {"--transpose"}};
  for (const auto& option : options) {
    ASSERT_EQ(draw(option), 0) << option[0] << ": " << errorText_;
    EXPECT_NE(readPicture(output_).pixels, plain) << option[0];
  }
}

TEST_F(VolumeCommand, ASecondaryMapColoursTheVolume) {
  write(volumeWhere([](int, int, int) { return true; }));
  writeFile(folder_ / "map.csv", "255,0,0\n0,0,255\n");
  writeNpy(folder_ / "secondary.npy", "1, 2", {3.0f, 7.0f});  // of a size of its own, along the A-scans
  const std::vector<std::string> secondary{"--angles",
                                           "0",
                                           "0",
                                           "--range",
                                           "0",
                                           "1",
                                           "--opacity",
                                           "1",
                                           "--no-edges",
                                           "--secondary",
                                           file("secondary.npy"),
                                           "--secondary-range",
                                           "3",
                                           "7",
                                           "--secondary-colormap",
                                           file("map.csv")};
  ASSERT_EQ(draw(secondary), 0) << errorText_;
  EXPECT_GT(redAt(0.42, 0.5), 200);
  EXPECT_LT(redAt(0.58, 0.5), 50);
  std::filesystem::remove(output_);
  expectFailure(2, {"--secondary", file("secondary.npy"), "--mode", "mean"}, "--secondary");
  expectFailure(2, {"--secondary", file("secondary.npy"), "--overlay", toUtf8(input_)}, "--overlay");
  expectFailure(2, {"--secondary-range", "0", "1"}, "--secondary");
  expectFailure(3, {"--secondary", file("none.npy")}, "none.npy");
}

TEST_F(VolumeCommand, ReadsArraysInFortranOrder) {
  ASSERT_EQ(draw(kFront), 0);
  const Picture wanted = readPicture(output_);
  const auto lit = [](int z, int, int) { return z < kDepth / 2; };
  std::vector<float> values;
  for (int a = 0; a < kAscans; ++a) {
    for (int z = 0; z < kDepth; ++z) {
      for (int b = 0; b < kBscans; ++b) values.push_back(lit(z, a, b) ? 1.0f : 0.0f);
    }
  }
  writeFile(input_, npyBytes(npyDictionary("<f4", true, "5, 6, 4"), bytesOf(values)));
  ASSERT_EQ(draw(kFront), 0) << errorText_;
  EXPECT_EQ(readPicture(output_).pixels, wanted.pixels);
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
}

TEST_F(VolumeCommand, AVolumeBeyondTheLimitIsNamed) {
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
