// Command lines that end before anything is drawn.
#include "program_test.h"

namespace oct::app::test {
namespace {

class BscanCommand : public BscanTest {
 protected:
  BscanCommand() { writeNpy(input_, "2, 2", {0, 1, 2, 3}); }
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
  for (const Arguments& arguments : std::initializer_list<Arguments>{
           {}, {"paint"}, {"bscan"}, {"bscan", file("in.npy")}, {"bscan", "-o", file("out.png")}})
    EXPECT_EQ(runBare(arguments), 2);
}

TEST_F(BscanCommand, RefusesWrongOptions) {
  expectFailure(2, {"--nonsense"}, "--nonsense");
  expectFailure(2, {"second.npy"}, "second.npy");
  expectFailure(2, {"--frame", "-1"}, "--frame");
  expectFailure(2, {"--frame", "1.5"}, "--frame");
  expectFailure(2, {"--size", "12"}, "--size");
  expectFailure(2, {"--size", "2x2", "--spacing", "1", "1"}, "--size");
  expectFailure(2, {"--spacing", "1"}, "--spacing");
  expectFailure(2, {"--spacing", "0", "1"}, "--spacing");
  expectFailure(2, {"--range", "1"}, "--range");
  expectFailure(2, {"--range", "1", "1"}, "--range");
  expectFailure(2, {"--range", "low", "high"}, "--range");
  expectFailure(2, {"--range", "auto", "1"}, "1");
  expectFailure(2, {"--colormap", "jet"}, "jet");
  expectFailure(2, {"--blur", "third"}, "--blur");
  expectFailure(2, {"--background", "red"}, "--background");
  expectFailure(2, {"--overlay-threshold", "1"}, "--overlay");
  expectFailure(2, {"--overlay-range", "1", "2"}, "--overlay");
  expectFailure(2, {"--overlay-colormap", "gray"}, "--overlay");
  expectFailure(2, {"--overlay-opacity", "1"}, "--overlay");
  expectFailure(2, {"--overlay", file("in.npy"), "--overlay-opacity", "1.5"}, "--overlay-opacity");
}

TEST_F(BscanCommand, RefusesToWriteOverItsInputOrOtherKindsOfFile) {
  EXPECT_EQ(runBare({"bscan", file("in.npy"), "-o", file("picture.jpg")}), 2);
  writeFile(folder_ / "in.png", "no matter what");
  EXPECT_EQ(runBare({"bscan", file("in.png"), "-o", file("in.png")}), 2);
  EXPECT_EQ(runBare({"bscan", file("in.npy"), "-o", file("in.png"), "--overlay", file("in.png")}), 2);
  EXPECT_EQ(readFile(folder_ / "in.png"), "no matter what");
}

TEST_F(BscanCommand, ReportsUnreadableInputAndKeepsAnOldPicture) {
  EXPECT_EQ(runBare({"bscan", file("none.npy"), "-o", file("out.png")}), 3);
  EXPECT_EQ(errorText_, "octrender: " + file("none.npy") + ": no such file\n");
  expectFailure(3, {"--frame", "1"}, "in.npy: there is no frame 1");
  expectFailure(3, {"--overlay", file("none.npy")}, "none.npy: no such file");
  expectFailure(3, {"--colormap", file("none.csv")}, "none.csv: no such file");
  writeFile(input_, "not an array");
  expectFailure(3, {}, "in.npy: not a .npy");
  const float nan = std::numeric_limits<float>::quiet_NaN();
  writeNpy(input_, "1, 2", {nan, nan});
  expectFailure(3, {}, "in.npy: the image holds no finite sample");
  writeNpy(input_, "1, 2", {0, -1});
  expectFailure(3, {"--db"}, "in.npy: the image holds no finite sample");
  writeFile(output_, "old");
  EXPECT_EQ(run({"--db"}), 3);
  EXPECT_EQ(readFile(output_), "old");
}

}  // namespace
}  // namespace oct::app::test
