// "octrender bscan", from a file to a picture.
#include "program_test.h"

namespace oct::app::test {
namespace {

// Two rows of depth, three A-scans.
class Bscan : public ProgramTest {
 protected:
  Bscan() : ProgramTest("bscan in.npy -o out.png") { writeNpy("in.npy", "2, 3", {0, 40, 80, 120, 160, 200}); }
};

TEST_F(Bscan, HelpAndVersionSucceed) {
  for (const auto& [arguments, words] :
       {std::pair{"--help", "Exit codes"}, {"bscan --help", "--overlay-threshold"}, {"--version", "."}}) {
    EXPECT_EQ(runBare(arguments), 0);
    expectIn(words, outText_);
    EXPECT_EQ(errorText_, "");
  }
}

TEST_F(Bscan, RefusesWrongCommandLines) {
  for (const char* const arguments : {"", "paint", "bscan", "bscan in.npy", "bscan -o out.png"}) {
    EXPECT_EQ(runBare(arguments), 2);
  }
  expectWrong("--nonsense", {""});
  expectWrong("second.npy", {""});
  expectWrong("--frame", {"-1", "1.5"});
  expectWrong("--spacing", {"1", "0 1", "1 nan"});
  expectWrong("--range", {"1", "1 1", "1 1.000000000001", "0 inf", "low high"});
  expectWrong("--blur", {"third"});
  expectWrong("--size", {"12", "2x", "x2", "2X2", "0x2", "2x0", "-2x2", "2x2x2", "1.5x2", "16385x1",
                         "99999999999x1", "16384x16384"});
  expectWrong("--background", {"red", "12345", "1234567", "12345g", "-12345", "0x1234"});
  expectWrong("--overlay-threshold", {"1"});
  expectWrong("--overlay-range", {"1 2"});
  expectWrong("--overlay-colormap", {"gray"});
  expectWrong("--overlay-opacity", {"1", "1.5 --overlay in.npy"});
  expectError(2, "--size 2x2 --spacing 1 1", "--spacing");
  expectError(2, "--range auto 1", "1");
  expectError(2, "--colormap jet", "'jet'; there are gray, viridis, inferno, magma, cividis and .csv files");
  EXPECT_EQ(runBare("bscan in.npy -o picture.jpg"), 2);
}

TEST_F(Bscan, ReportsFilesAndKeepsWhatIsThere) {
  expectError(3, "--frame 1", "in.npy: there is no frame 1");
  expectError(3, "--overlay none.npy", "octrender: none.npy: no such file\n");
  expectError(3, "--colormap none.csv", "none.csv: no such file");
  EXPECT_EQ(runBare("bscan in.npy -o none/out.png"), 4);
  EXPECT_EQ(errorText_, "octrender: none/out.png: cannot be opened for writing\n");
  writeFile("in.npy", "not an array");
  expectError(3, "", "in.npy: not a .npy");
  const float nan = std::numeric_limits<float>::quiet_NaN();
  writeNpy("in.npy", "1, 2", {nan, nan});
  expectError(3, "", "in.npy: the image holds no finite sample");
  writeNpy("in.npy", "1, 2", {0, -1});
  expectError(3, "--db", "in.npy: the image holds no finite sample");
  // Larger than the textures of any driver that the project knows.
  writeFile("in.npy", npyBytes(npyDictionary("|u1", false, "65536, 2"), std::string(131072, 'x')));
  expectError(1, "", "octrender: rendering failed: Cannot generate a texture of the required size.");
  writeFile("out.png", "old");
  EXPECT_EQ(run(""), 1);
  EXPECT_EQ(runBare("bscan out.png -o out.png"), 2);
  EXPECT_EQ(run("--overlay out.png"), 2);
  EXPECT_EQ(readFile("out.png"), "old");
}

TEST_F(Bscan, PlacesSamplesByItsOptions) {
  expectPicture("--range 0 255", 3, 2, {0, 40, 80, 120, 160, 200});
  EXPECT_EQ(errorText_, "");
  expectPicture("--range 0 255 --flip", 3, 2, {120, 160, 200, 0, 40, 80});
  expectPicture("--range 0 255 --transpose", 2, 3, {0, 120, 40, 160, 80, 200});
  expectPicture("--range 0 255 --size 6x2", 6, 2, {0, 0, 40, 40, 80, 80, 120, 120, 160, 160, 200, 200});
  expectPicture("--range 0 255 --spacing 2 1", 3, 4, {0, 40, 80, 0, 40, 80, 120, 160, 200, 120, 160, 200});
}

TEST_F(Bscan, MapsTheRangeToColours) {
  expectPicture("--range 40 160", 3, 2, {0, 0, 85, 170, 255, 255});
  expectPicture("--range 160 40", 3, 2, {255, 255, 170, 85, 0, 0});
  expectPicture("--range 0 255 --reverse", 3, 2, {255, 215, 175, 135, 95, 55});
  // Percentiles of six samples: 2 and 199.
  expectPicture("", 3, 2, {0, 49, 101, 153, 205, 255});
  expectPicture("--range auto", 3, 2, {0, 49, 101, 153, 205, 255});
  EXPECT_EQ(runBare("bscan --range auto in.npy -o out.png"), 0) << errorText_;
  writeNpy("in.npy", "1, 2", {0, 200});
  expectPicture("--range 80 81 --colormap viridis", 2, 1, {68, 1, 84, 253, 231, 37});
  writeFile("map.csv", "255,255,255,0\n0,0,255,255\n");  // the background is seen through it
  expectPicture("--range 80 81 --colormap map.csv --background 1020fF", 2, 1, {16, 32, 255, 0, 0, 255});
}

TEST_F(Bscan, DrawsConstantImagesInfinitiesAndDecibels) {
  writeNpy("in.npy", "2, 2", {7, 7, 7, 7});
  expectPicture("", 2, 2, {0, 0, 0, 0});
  const float infinity = std::numeric_limits<float>::infinity();
  writeNpy("in.npy", "1, 4", {std::numeric_limits<float>::quiet_NaN(), -infinity, infinity, 100});
  expectPicture("--range 0 255", 4, 1, {0, 0, 255, 100});
  writeNpy("in.npy", "1, 4", {1, 0.1f, 0.01f, 0});
  expectPicture("--db --range -40 0", 4, 1, {255, 128, 0, 0});
  writeNpy("in.npy", "1, 20", {1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1e-5f, 1e-5f, 1e-5f, 1e-5f, 0, 0, 0, 0, 0, 0});
  draw("");
  expectIn("for linear data try --db", errorText_);
  draw("--db");
  EXPECT_EQ(errorText_, "");
}

TEST_F(Bscan, PicksFrames) {
  writeNpy("in.npy", "3, 1, 2", {10, 11, 20, 21, 30, 31});
  expectPicture("--range 0 255", 2, 1, {20, 21});
  expectIn("in.npy: showing frame 1 of 0 to 2", errorText_);
  expectPicture("--range 0 255 --frame 2", 2, 1, {30, 31});
  EXPECT_EQ(errorText_, "");
}

// One bright sample: a blur before the pepper filter leaves it less to raise.
TEST_F(Bscan, FiltersInTheirOrder) {
  writeNpy("in.npy", "5, 5", {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  expectOtherPictures("--range 0 255", {"--blur first", "--blur both", "--pepper", "--pepper --blur second",
                                        "--pepper --blur both"});
  draw("--range 0 255 --pepper --blur first");
  EXPECT_NEAR(redAt(0.5, 0.5), 0.16 * 255, 2);
}

// Base 10, 20, 90, 100; overlay: low, high, low, high.
TEST_F(Bscan, OverlaysAreBlendedOverBrightSamples) {
  writeNpy("in.npy", "1, 4", {10, 20, 90, 100});
  writeNpy("overlay.npy", "1, 4", {0, 5, 0, 5});
  writeFile("map.csv", "255,0,0\n0,255,0\n");
  const std::string overlay =
      "--overlay overlay.npy --overlay-range 0 5 --overlay-colormap map.csv --overlay-opacity ";
  expectPicture("--range 0 255 --overlay-threshold 50 " + overlay + "1", 4, 1,
                {10, 10, 10, 20, 20, 20, 255, 0, 0, 0, 255, 0});
  expectPicture("--range 0 255 " + overlay + "0.2", 4, 1, {59, 8, 8, 16, 67, 16, 123, 72, 72, 80, 131, 80});
  // Without threshold also over negative samples.
  expectPicture("--range -90 0 " + overlay + "1", 4, 1, {255, 0, 0, 0, 255, 0, 255, 0, 0, 0, 255, 0});
  // The frame of the base, which is the middle one or a given one.
  writeNpy("in.npy", "3, 1, 1", {-9, 0, 9});
  writeNpy("overlay.npy", "5, 1, 1", {0, 5, 0, 0, 0});
  expectPicture(overlay + "1", 1, 1, {0, 255, 0});
  expectPicture("--frame 2 " + overlay + "1", 1, 1, {255, 0, 0});
  writeNpy("overlay.npy", "1, 1", {5});  // over every frame
  expectPicture("--frame 2 " + overlay + "1", 1, 1, {0, 255, 0});
}

}  // namespace
}  // namespace oct::app::test
