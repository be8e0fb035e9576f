// Command lines that end before anything is drawn.
#include "bscan_test_base.h"

namespace oct::app::test {
namespace {

class BscanCommand : public BscanTest {
 protected:
  BscanCommand() { writeNpy(input_, "2, 2", {0, 1, 2, 3}); }

  void expectRun(int code, const std::vector<std::string>& further, const std::string& words) {
    SCOPED_TRACE(words);
    EXPECT_EQ(run(further), code);
    EXPECT_EQ(errorText_.rfind("octrender: ", 0), 0u) << errorText_;
    EXPECT_NE(errorText_.find(words), std::string::npos) << errorText_;
    EXPECT_FALSE(std::filesystem::exists(output_));
  }
};

TEST_F(BscanCommand, HelpAndVersionSucceed) {
  EXPECT_EQ(runBare({"--help"}), 0);
  EXPECT_NE(outText_.find("Exit codes"), std::string::npos);
  EXPECT_EQ(runBare({"bscan", "--help"}), 0);
  EXPECT_NE(outText_.find("--overlay-threshold"), std::string::npos);
  EXPECT_NE(outText_.find("offscreen target"), std::string::npos);
  EXPECT_EQ(runBare({"--version"}), 0);
  EXPECT_NE(outText_.find('.'), std::string::npos);
  EXPECT_EQ(errorText_, "");
}

TEST_F(BscanCommand, NeedsVerbInputAndOutput) {
  EXPECT_EQ(runBare({}), 2);
  EXPECT_EQ(runBare({"paint"}), 2);
  EXPECT_EQ(runBare({"bscan"}), 2);
  EXPECT_EQ(runBare({"bscan", file("in.npy")}), 2);
  EXPECT_EQ(runBare({"bscan", "-o", file("out.png")}), 2);
}

TEST_F(BscanCommand, RefusesWrongOptions) {
  expectRun(2, {"--nonsense"}, "--nonsense");
  expectRun(2, {"second.npy"}, "second.npy");
  expectRun(2, {"--frame", "-1"}, "--frame");
  expectRun(2, {"--frame", "1.5"}, "--frame");
  expectRun(2, {"--size", "12"}, "--size");
  expectRun(2, {"--size", "2x2", "--spacing", "1", "1"}, "--size");
  expectRun(2, {"--spacing", "1"}, "--spacing");
  expectRun(2, {"--spacing", "0", "1"}, "--spacing");
  expectRun(2, {"--range", "1"}, "--range");
  expectRun(2, {"--range", "1", "1"}, "--range");
  expectRun(2, {"--range", "low", "high"}, "--range");
  expectRun(2, {"--range", "auto", "1"}, "1");
  expectRun(2, {"--colormap", "jet"}, "jet");
  expectRun(2, {"--blur", "third"}, "--blur");
  expectRun(2, {"--background", "red"}, "--background");
}

TEST_F(BscanCommand, RefusesOverlayOptionsWithoutOverlay) {
  expectRun(2, {"--overlay-threshold", "1"}, "--overlay");
  expectRun(2, {"--overlay-range", "1", "2"}, "--overlay");
  expectRun(2, {"--overlay-colormap", "gray"}, "--overlay");
  expectRun(2, {"--overlay-opacity", "1"}, "--overlay");
  expectRun(2, {"--overlay", file("in.npy"), "--overlay-opacity", "1.5"}, "--overlay-opacity");
}

TEST_F(BscanCommand, RefusesToWriteOverItsInputOrOtherKindsOfFile) {
  EXPECT_EQ(runBare({"bscan", file("in.npy"), "-o", file("picture.jpg")}), 2);
  writeFile(folder_ / "in.png", "no matter what");
  EXPECT_EQ(runBare({"bscan", file("in.png"), "-o", file("in.png")}), 2);
  EXPECT_EQ(runBare({"bscan", file("in.npy"), "-o", file("in.png"), "--overlay", file("in.png")}), 2);
  EXPECT_EQ(readFile(folder_ / "in.png"), "no matter what");
}

TEST_F(BscanCommand, ReportsUnreadableInput) {
  EXPECT_EQ(runBare({"bscan", file("none.npy"), "-o", file("out.png")}), 3);
  EXPECT_EQ(errorText_, "octrender: " + file("none.npy") + ": no such file\n");
  expectRun(3, {"--frame", "1"}, "in.npy: there is no frame 1");
  expectRun(3, {"--overlay", file("none.npy")}, "none.npy: no such file");
  expectRun(3, {"--colormap", file("none.csv")}, "none.csv: no such file");
  writeFile(input_, "not an array");
  expectRun(3, {}, "in.npy: not a .npy");
}

TEST_F(BscanCommand, ReportsImagesWithoutAnyFiniteSample) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  writeNpy(input_, "1, 2", {nan, nan});
  expectRun(3, {}, "in.npy: the image holds no finite sample");
  writeNpy(input_, "1, 2", {0, -1});
  expectRun(3, {"--db"}, "in.npy: the image holds no finite sample");
}

TEST_F(BscanCommand, KeepsAnOldPictureWhenItFails) {
  writeFile(output_, "old");
  EXPECT_EQ(runBare({"bscan", file("none.npy"), "-o", file("out.png")}), 3);
  EXPECT_EQ(readFile(output_), "old");
}

}  // namespace
}  // namespace oct::app::test
