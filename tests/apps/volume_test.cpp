// "octrender volume" and "octrender info".
#include "apps/program_test.h"
#include "apps/written_formats.h"

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
  for (const auto& [layout, bytes] : {std::pair{"f4", encoded(raw, "f4")},
                                      {"u2le+0", encoded(raw, "u2") + "tail"},
                                      {"i4be+3", "abc" + encoded(raw, "i4", true)},
                                      {"u1 --axes bda", encoded(values, "u1")}}) {
    write_file("in.npy", bytes);
    EXPECT_EQ(draw(front + "--raw 6x4x5:" + layout), wanted) << layout;
  }
}

// Of the file where the command line gives none, and shown with its source.
TEST_F(Volume, KeepsTheProportionsOfTheFilesSpacing) {
  const std::vector<float> values = volume_where(6, 4, 5, [](int z, int, int) { return z < 3; });
  write_file("scan.nrrd",
             "NRRD0004\ntype: uchar\ndimension: 3\nsizes: 4 6 5\nencoding: raw\n"
             "spacings: 500 250 800\nunits: \"um\" \"um\" \"um\"\n\n" +
                 encoded(values, "u1"));
  const std::string common = "scan.nrrd -o out.png --size 80x60 --mode maximum --range 0 1 ";
  const std::vector<std::uint8_t> cubes = draw("--mode maximum --range 0 1");
  EXPECT_EQ(error_text_, "");
  ASSERT_EQ(run_bare("volume " + common), 0) << error_text_;
  expect_in("scan.nrrd: voxels of 0.25 x 0.5 x 0.8 mm (depth, A-scan, B-scan; NRRD header)", error_text_);
  const std::vector<std::uint8_t> shown = read_picture("out.png").pixels;
  EXPECT_EQ(run_bare("volume " + common + "--extent 1.5 2 4"), 0);
  EXPECT_EQ(error_text_, "");
  EXPECT_TRUE(read_picture("out.png").pixels == shown);
  EXPECT_FALSE(shown == cubes);
  ASSERT_EQ(run_bare("info scan.nrrd"), 0);
  expect_in("Voxels of 0.25 x 0.5 x 0.8 mm", out_text_);
  // A B-scan has the aspect of its spacing, too.
  ASSERT_EQ(run_bare("bscan scan.nrrd -o out.png --frame 2"), 0);
  EXPECT_EQ(read_picture("out.png").size.width, 8U);
  EXPECT_EQ(read_picture("out.png").size.height, 6U);
}

TEST_F(Volume, IsReducedToWhatDriversDraw) {
  std::string samples(35000 * 2, '\0');
  for (const std::size_t b : {0, 1})
    samples.replace(b * 35000, 17500, 17500, '\1');  // the upper half is bright
  write_file("in.npy", samples);
  draw(front + "--raw 35000x1x2:u1 --extent 6 4 5");
  expect_in("in.npy: reduced 18 x 1 x 1 times, from 35000 x 1 x 2 to 1945 x 1 x 2 voxels", error_text_);
  EXPECT_GT(red_at(0.5, 0.35), 200);
  EXPECT_LT(red_at(0.5, 0.65), 50);
  write_npy("heights.npy", "2, 1", {17500, 17500});  // in samples of the file
  draw("--raw 35000x1x2:u1 --extent 6 4 5 --surface heights.npy --surface-only --angles 0 0");
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
                             "--opacity-shift 0.4",
                             "--opacity-points 0:0.2,1:0.8",
                             "--percentiles 0 75",
                             "--translate 0.3 0.2 -0.5",
                             "--reverse",
                             "--light 0.3 0.7 0.2",
                             "--jitter",
                             "--opacity-length 2",
                             "--surface heights.npy --surface-only",
                             "--surface heights.npy --surface-only --surface-range 0 3",
                             "--surface heights.npy --surface-only --surface-range 0 3 --surface-reverse",
                             "--overlay in.npy",
                             "--overlay in.npy --overlay-reverse",
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
  expect_wrong("--raw", {"6:f4", "0x4x5:f4", "65537x4x5:f4", "6x4x5:f3", "6x4x5", "6x4x5:u2xe", "6x4x5:u2+",
                         "6x4x5:u2+1k"});
  expect_wrong("--axes", {"bd", "bbd", "bdab", "xyz", "bda --transpose"});
  expect_wrong("--sections", {"0.5 1.5 0.5"});
  expect_wrong("--extent", {"1 0 1"});
  expect_wrong("--clip", {"1.5"});
  expect_wrong("--light", {"0.3 0.7", "0.3 -1 0"});
  expect_wrong("--opacity-length", {"-1"});
  expect_wrong("--opacity-shift", {"1.5"});
  expect_wrong("--opacity-points", {"0.5:0,0.4:1", "0:1.5", "0;1", "nan:1"});
  expect_wrong("--percentiles", {"50 50", "-1 50", "0 101", "1 99 --range 0 1"});
  expect_wrong("--translate", {"0 0", "0 0 1e9"});
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
