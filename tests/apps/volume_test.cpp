// "octrender volume" and "octrender info".
#include "apps/program_test.h"

namespace oct::app::test {
namespace {

class Volume : public ProgramTest {
 protected:
  Volume() : ProgramTest("volume in.npy -o out.png --size 80x60") {
    write(volume_where(6, 4, 5, [](int z, int, int) { return z < 3; }));
  }
  static void write(const std::vector<float>& values) { write_npy("in.npy", "5, 6, 4", values); }
};

const std::string front = "--mode maximum --angles 0 0 --range 0 1 --colormap gray --no-edges ";

TEST_F(Volume, DepthRunsDownAndAscansToTheRight) {
  draw(front);
  EXPECT_GT(red_at(0.5, 0.35), 200);
  EXPECT_LT(red_at(0.5, 0.65), 50);
  write(volume_where(6, 4, 5, [](int, int a, int) { return a >= 2; }));
  draw(front);
  EXPECT_LT(red_at(0.42, 0.5), 50);
  EXPECT_GT(red_at(0.58, 0.5), 200);
}

// From the front the last B-scan is next to the viewer: an opaque one hides what lies behind.
TEST_F(Volume, BscansRunTowardsTheViewer) {
  std::vector<float> values = volume_where(6, 4, 5, [](int, int, int b) { return b >= 3; });
  for (float& value : values) value = std::max(value, 0.5F);
  write(values);
  write_file("map.csv", "0,0,0,0\n0,0,255,255\n255,0,0,255\n");
  draw("--angles 0 0 --range 0 1 --colormap map.csv --no-edges");
  EXPECT_GT(red_at(0.5, 0.5), 200);
}

TEST_F(Volume, RawSamplesGiveTheSamePicture) {
  const std::vector<float> values =
      volume_where(6, 4, 5, [](int z, int a, int b) { return z < 3 && a > 1 && b > 0; });
  write(values);
  const std::vector<std::uint8_t> wanted = draw(front);
  std::vector<float> raw;  // depth fastest, B-scans slowest
  for (std::size_t i = 0; i < values.size(); ++i) raw.push_back(values[i / 24 * 24 + i % 6 * 4 + i / 6 % 4]);
  for (const auto& [type, bytes] : {std::pair{"f4", bytes_of(raw)},
                                    {"u2", bytes_of(std::vector<std::uint16_t>(raw.begin(), raw.end()))},
                                    {"u1", bytes_of(std::vector<std::uint8_t>(raw.begin(), raw.end()))}}) {
    write_file("in.npy", bytes);
    EXPECT_EQ(draw(front + "--raw 6x4x5:" + type), wanted) << type;
  }
}

TEST_F(Volume, EveryOptionDrawsAnotherPicture) {
  write(volume_where(6, 4, 5, [](int z, int a, int) { return z < 3 && a < 2; }));
  write_npy("heights.npy", "5, 4", std::vector<float>(20, 2.0F));
  expect_other_pictures("", {"--mode mean",
                             "--mode sections --sections 0.2 off 1",
                             "--clip 0.5",
                             "--clip 0.5 --clip-open",
                             "--clip 0.5 --clip-ghost",
                             "--orthographic",
                             "--zoom 20",
                             "--extent 1 2 3",
                             "--opacity 0.9",
                             "--reverse",
                             "--light 0.3 0.7 0.2",
                             "--jitter",
                             "--opacity-length 2",
                             "--surface heights.npy --surface-only",
                             "--overlay in.npy",
                             "--box",
                             "--no-edges",
                             "--background FFFFFF FFFFFF",
                             "--foreground 00FF00",
                             "--transpose"});
  std::filesystem::remove("out.png");
  ASSERT_EQ(run("--turntable 4 --mode maximum"), 0) << error_text_;
  EXPECT_FALSE(std::filesystem::exists("out.png"));
  EXPECT_NE(read_picture("out-000.png").pixels, read_picture("out-001.png").pixels);
  EXPECT_NE(read_picture("out-002.png").pixels, read_picture("out-003.png").pixels);
  EXPECT_FALSE(std::filesystem::exists("out-004.png"));
}

TEST_F(Volume, ASecondaryMapColoursTheVolume) {
  write(volume_where(6, 4, 5, [](int, int, int) { return true; }));
  write_file("map.csv", "255,0,0\n0,0,255\n");
  write_npy("map.npy", "1, 2", {3.0F, 7.0F});  // of a size of its own, along the A-scans
  draw(
      "--angles 0 0 --range 0 1 --opacity 1 --no-edges --secondary map.npy --secondary-range 3 7 "
      "--secondary-colormap map.csv");
  EXPECT_GT(red_at(0.42, 0.5), 200);
  EXPECT_LT(red_at(0.58, 0.5), 50);
}

TEST_F(Volume, SaysWhyAPictureIsEmpty) {
  draw("--range 2 3");
  expect_in(
      "octrender: warning: All values of the volume lie at or below the lower colouring boundary: values "
      "from 0 to 1, boundaries 2 to 3. ",
      error_text_);
  EXPECT_EQ(run("--turntable 2 --sections off off off --mode sections --range 0 1"), 0);
  expect_in("octrender: warning: All three slices", error_text_);
  draw("--range 0 1");
  EXPECT_EQ(error_text_, "");
}

TEST_F(Volume, RefusesWhatMakesNoSense) {
  expect_wrong("--mode", {"dual"});
  expect_wrong("--raw", {"6x4:f4", "0x4x5:f4", "65537x4x5:f4", "6x4x5:f8", "6x4x5"});
  expect_wrong("--sections", {"0.5 1.5 0.5"});
  expect_wrong("--extent", {"1 0 1"});
  expect_wrong("--clip", {"1.5"});
  expect_wrong("--light", {"0.3 0.7", "0.3 -1 0"});
  expect_wrong("--opacity-length", {"-1"});
  expect_wrong("--turntable", {"1"});
  expect_wrong("--secondary", {"in.npy --mode mean", "in.npy --overlay in.npy"});
  expect_error(2, "--clip-open", "--clip");
  expect_error(2, "--secondary-range 0 1", "--secondary");
  expect_error(3, "--raw 6x4x6:f4", " bytes; --raw describes 576");
  expect_error(3, "--overlay none.npy", "none.npy");
  expect_error(3, "--secondary none.npy", "none.npy");
  for (const char* const shape : {"3, 6, 4", "5, 6, 3"}) {
    write_npy("other.npy", shape, std::vector<float>(90));
    expect_error(3, "--overlay other.npy", "another size");
  }
  write_npy("heights.npy", "4, 5", std::vector<float>(20));
  expect_error(3, "--surface heights.npy", "5 B-scans of 4 A-scans");
  write_npy("in.npy", "6, 4", std::vector<float>(24));
  expect_error(
      3, "",
      "this is one image; a volume has three axes (B-scan, depth, A-scan). Draw it with octrender bscan");
  write_file("in.npy", std::string(70000, 'a'));
  expect_error(1, "--raw 35000x1x2:u1", "35000 x 1 x 2 voxels is too large");
}

TEST_F(Volume, InfoTellsDriverAndLimits) {
  ASSERT_EQ(run_bare("info in.npy"), 0) << error_text_;
  for (const char* const words :
       {"OpenGL", "driver", "voxels a side", "depth 6, A-scans 4, B-scans 5", "fits"}) {
    expect_in(words, out_text_);
  }
  EXPECT_EQ(run_bare("info none.npy"), 3);
}

}  // namespace
}  // namespace oct::app::test
