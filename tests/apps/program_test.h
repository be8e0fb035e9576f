// Runs octrender in this process, on files in a folder of the test's own.
#pragma once

#include "octrender/program.h"
#include "test_files.h"

namespace oct::app::test {

using Arguments = std::vector<std::string>;

// One list of arguments after the other.
inline Arguments joined(Arguments first, const Arguments& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

class ProgramTest : public testing::Test {
 protected:
  // Runs with what the tests of the class have in common, the output "out.png" among it, and further
  // arguments.
  virtual int run(const Arguments& further) = 0;
  int run() { return run({}); }

  int runBare(const Arguments& arguments) {
    const CapturedStream error(std::cerr);
    const CapturedStream out(std::cout);
    const int code = runProgram(arguments);
    errorText_ = error.text();
    outText_ = out.text();
    return code;
  }

  void expectFailure(int code, const Arguments& further, const std::string& words) {
    SCOPED_TRACE(words);
    EXPECT_EQ(run(further), code);
    const std::string shown = errorText_.substr(errorText_.rfind('\r') + 1);  // progress is written over
    EXPECT_EQ(shown.rfind("octrender: ", 0), 0u) << errorText_;
    EXPECT_NE(errorText_.find(words), std::string::npos) << errorText_;
    EXPECT_FALSE(std::filesystem::exists(output_));
  }

  // Each of these lists of options, beside the common ones, changes the picture.
  void expectOtherPictures(const std::vector<Arguments>& options, const Arguments& common = {}) {
    ASSERT_EQ(run(common), 0) << errorText_;
    const std::vector<std::uint8_t> plain = pixels();
    for (const Arguments& further : options) {
      SCOPED_TRACE(testing::PrintToString(further));
      ASSERT_EQ(run(joined(common, further)), 0) << errorText_;
      EXPECT_NE(pixels(), plain);
    }
  }

  std::vector<std::uint8_t> pixels() const { return readPicture(output_).pixels; }

  // Red of the picture at a fraction of its width and height, from the top left.
  int redAt(double x, double y) const {
    const Picture picture = readPicture(output_);
    const auto column = static_cast<std::size_t>(x * picture.size.width);
    const auto row = static_cast<std::size_t>(y * picture.size.height);
    return picture.pixels[(row * picture.size.width + column) * 3];
  }

  std::string file(const std::string& name) const { return toUtf8(folder_ / name); }

  TemporaryFolder folder_;
  std::filesystem::path input_ = folder_ / "in.npy";
  std::filesystem::path output_ = folder_ / "out.png";
  std::string errorText_;
  std::string outText_;
};

// "octrender bscan" with the input "in.npy".
class BscanTest : public ProgramTest {
 protected:
  using ProgramTest::run;
  int run(const Arguments& further) override {
    return runBare(joined({"bscan", toUtf8(input_), "-o", toUtf8(output_)}, further));
  }
};

}  // namespace oct::app::test
