// "octrender bscan", from a file to a picture.
#include "apps/program_test.h"

namespace oct::app::test {
namespace {

// Two rows of depth, three A-scans.
class Bscan : public ProgramTest {
 protected:
  Bscan() : ProgramTest("bscan in.npy -o out.png") {
    write_npy("in.npy", "2, 3", {0, 40, 80, 120, 160, 200});
  }
};

TEST_F(Bscan, HelpAndVersionSucceed) {
  for (const auto& [arguments, words] :
       {std::pair{"--help", "Exit codes"}, {"bscan --help", "--overlay-threshold"}, {"--version", "."}}) {
    EXPECT_EQ(run_bare(arguments), 0);
    expect_in(words, out_text_);
    EXPECT_EQ(error_text_, "");
  }
}

TEST_F(Bscan, RefusesWrongCommandLines) {
  for (const char* const arguments : {"", "paint", "bscan", "bscan in.npy", "bscan -o out.png"}) {
    EXPECT_EQ(run_bare(arguments), 2);
  }
  expect_wrong("--nonsense", {""});
  expect_wrong("second.npy", {""});
  expect_wrong("--frame", {"-1", "1.5"});
  expect_wrong("--spacing", {"1", "0 1", "1 nan"});
  expect_wrong("--range", {"1", "1 1", "1 1.000000000001", "0 inf", "low high"});
  expect_wrong("--blur", {"third"});
  expect_wrong("--size", {"12", "2x", "x2", "2X2", "0x2", "2x0", "-2x2", "2x2x2", "1.5x2", "65537x1",
                          "99999999999x1", "16384x16384"});
  expect_wrong("--background", {"red", "12345", "1234567", "12345g", "-12345", "0x1234"});
  expect_wrong("--overlay-threshold", {"1"});
  expect_wrong("--overlay-range", {"1 2"});
  expect_wrong("--overlay-colormap", {"gray"});
  expect_wrong("--overlay-opacity", {"1", "1.5 --overlay in.npy"});
  expect_error(2, "--size 2x2 --spacing 1 1", "--spacing");
  expect_error(2, "--range auto 1", "1");
  expect_error(2, "--colormap jet", "'jet'; there are gray, viridis, inferno, magma, cividis and .csv files");
  EXPECT_EQ(run_bare("bscan in.npy -o picture.jpg"), 2);
}

TEST_F(Bscan, ReportsFilesAndKeepsWhatIsThere) {
  expect_error(3, "--frame 1", "in.npy: there is no frame 1");
  expect_error(3, "--overlay none.npy", "octrender: none.npy: no such file\n");
  expect_error(3, "--colormap none.csv", "none.csv: no such file");
  EXPECT_EQ(run_bare("bscan in.npy -o none/out.png"), 4);
  EXPECT_EQ(error_text_, "octrender: none/out.png: cannot be opened for writing\n");
  write_file("in.npy", "not an array");
  expect_error(3, "", "in.npy: not a .npy");
  const float nan = std::numeric_limits<float>::quiet_NaN();
  write_npy("in.npy", "1, 2", {nan, nan});
  expect_error(3, "", "in.npy: the image holds no finite sample");
  write_npy("in.npy", "1, 2", {0, -1});
  expect_error(3, "--db", "in.npy: the image holds no finite sample");
  // Larger than the textures of any driver that the project knows.
  write_file("in.npy", npy_array("|u1", "65536, 2", std::string(131072, 'x')));
  expect_error(1, "", "octrender: rendering failed: Cannot generate a texture of the required size.");
  write_file("out.png", "old");
  EXPECT_EQ(run(""), 1);
  EXPECT_EQ(run_bare("bscan out.png -o out.png"), 2);
  EXPECT_EQ(run("--overlay out.png"), 2);
  EXPECT_EQ(InputFile("out.png").whole(), "old");
}

TEST_F(Bscan, PlacesSamplesByItsOptions) {
  expect_picture("--range 0 255", 3, 2, {0, 40, 80, 120, 160, 200});
  EXPECT_EQ(error_text_, "");
  expect_picture("--range 0 255 --flip", 3, 2, {120, 160, 200, 0, 40, 80});
  expect_picture("--range 0 255 --transpose", 2, 3, {0, 120, 40, 160, 80, 200});
  expect_picture("--range 0 255 --size 6x2", 6, 2, {0, 0, 40, 40, 80, 80, 120, 120, 160, 160, 200, 200});
  expect_picture("--range 0 255 --spacing 2 1", 3, 4, {0, 40, 80, 0, 40, 80, 120, 160, 200, 120, 160, 200});
}

TEST_F(Bscan, MapsTheRangeToColours) {
  expect_picture("--range 40 160", 3, 2, {0, 0, 85, 170, 255, 255});
  expect_picture("--range 160 40", 3, 2, {255, 255, 170, 85, 0, 0});
  expect_picture("--range 0 255 --reverse", 3, 2, {255, 215, 175, 135, 95, 55});
  // Percentiles of six samples: 2 and 199.
  expect_picture("", 3, 2, {0, 49, 101, 153, 205, 255});
  expect_picture("--range auto", 3, 2, {0, 49, 101, 153, 205, 255});
  EXPECT_EQ(run_bare("bscan --range auto in.npy -o out.png"), 0) << error_text_;
  write_npy("in.npy", "1, 2", {0, 200});
  expect_picture("--range 80 81 --colormap viridis", 2, 1, {68, 1, 84, 253, 231, 37});
  write_file("map.csv", "255,255,255,0\n0,0,255,255\n");  // the background is seen through it
  expect_picture("--range 80 81 --colormap map.csv --background 1020fF", 2, 1, {16, 32, 255, 0, 0, 255});
}

TEST_F(Bscan, DrawsConstantImagesInfinitiesAndDecibels) {
  write_npy("in.npy", "2, 2", {7, 7, 7, 7});
  expect_picture("", 2, 2, {0, 0, 0, 0});
  const float infinity = std::numeric_limits<float>::infinity();
  write_npy("in.npy", "1, 4", {std::numeric_limits<float>::quiet_NaN(), -infinity, infinity, 100});
  expect_picture("--range 0 255", 4, 1, {0, 0, 255, 100});
  write_npy("in.npy", "1, 4", {1, 0.1F, 0.01F, 0});
  expect_picture("--db --range -40 0", 4, 1, {255, 128, 0, 0});
  write_npy("in.npy", "1, 20", {1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1e-5F, 1e-5F, 1e-5F, 1e-5F, 0, 0, 0, 0, 0, 0});
  draw("");
  expect_in("for linear data try --db", error_text_);
  draw("--db");
  EXPECT_EQ(error_text_, "");
}

TEST_F(Bscan, SaysWhyAPictureIsEmpty) {
  draw("--range 300 400");
  expect_in("octrender: warning: All samples of the image lie at or below the lower colouring boundary",
            error_text_);
  draw("--range 0 200");
  EXPECT_EQ(error_text_, "");
}

TEST_F(Bscan, PicksFrames) {
  write_npy("in.npy", "3, 1, 2", {10, 11, 20, 21, 30, 31});
  expect_picture("--range 0 255", 2, 1, {20, 21});
  expect_in("in.npy: showing frame 1 of 0 to 2", error_text_);
  expect_picture("--range 0 255 --frame 2", 2, 1, {30, 31});
  EXPECT_EQ(error_text_, "");
}

TEST_F(Bscan, ReadsRawFilesPipesAndOtherAxes) {
  write_file("in.npy", std::string("\0\40\0\170\0\50\0\240\0\120\0\310", 12));  // depth fastest, big-endian
  expect_picture("--range 0 255 --raw 2x3:u2be", 3, 2, {32, 40, 80, 120, 160, 200});
  expect_picture("--range 0 255 --raw 3x2:u2be --axes bda", 2, 3, {32, 120, 40, 160, 80, 200});
  write_npy("in.npy", "1, 2, 3", {0, 40, 80, 120, 160, 200});  // one en-face picture: two B-scans
  expect_picture("--range 0 255 --axes dba --frame 1", 3, 1, {120, 160, 200});
  std::istringstream pipe(InputFile("in.npy").whole() + "more");
  auto* const before = std::cin.rdbuf(pipe.rdbuf());
  EXPECT_EQ(run_bare("bscan - -o out.png --range 0 255"), 0) << error_text_;
  std::cin.clear();
  EXPECT_EQ(run_bare("bscan - -o out.png"), 3);
  EXPECT_EQ(error_text_, "octrender: standard input: the file is empty\n");
  std::cin.rdbuf(before);
  std::cin.clear();
  EXPECT_EQ(read_picture("out.png").pixels[6], 80);
}

// One bright sample: a blur before the pepper filter leaves it less to raise.
TEST_F(Bscan, FiltersInTheirOrder) {
  write_npy("in.npy", "5, 5", {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  expect_other_pictures("--range 0 255", {"--blur first", "--blur both", "--pepper", "--pepper --blur second",
                                          "--pepper --blur both"});
  draw("--range 0 255 --pepper --blur first");
  EXPECT_NEAR(red_at(0.5, 0.5), 0.16 * 255, 2);
}

// Base 10, 20, 90, 100; overlay: low, high, low, high.
TEST_F(Bscan, OverlaysAreBlendedOverBrightSamples) {
  write_npy("in.npy", "1, 4", {10, 20, 90, 100});
  write_npy("overlay.npy", "1, 4", {0, 5, 0, 5});
  write_file("map.csv", "255,0,0\n0,255,0\n");
  const std::string overlay =
      "--overlay overlay.npy --overlay-range 0 5 --overlay-colormap map.csv --overlay-opacity ";
  expect_picture("--range 0 255 --overlay-threshold 50 " + overlay + "1", 4, 1,
                 {10, 10, 10, 20, 20, 20, 255, 0, 0, 0, 255, 0});
  expect_picture("--range 0 255 " + overlay + "0.2", 4, 1, {59, 8, 8, 16, 67, 16, 123, 72, 72, 80, 131, 80});
  // Without threshold also over negative samples.
  expect_picture("--range -90 0 " + overlay + "1", 4, 1, {255, 0, 0, 0, 255, 0, 255, 0, 0, 0, 255, 0});
  // The frame of the base, which is the middle one or a given one.
  write_npy("in.npy", "3, 1, 1", {-9, 0, 9});
  write_npy("overlay.npy", "5, 1, 1", {0, 5, 0, 0, 0});
  expect_picture(overlay + "1", 1, 1, {0, 255, 0});
  expect_picture("--frame 2 " + overlay + "1", 1, 1, {255, 0, 0});
  write_npy("overlay.npy", "1, 1", {5});  // over every frame
  expect_picture("--frame 2 " + overlay + "1", 1, 1, {0, 255, 0});
}

}  // namespace
}  // namespace oct::app::test
