// Runs "octrender bscan" in this process, on files in a folder of the test's own.
#pragma once

#include "program.h"
#include "test_files.h"

namespace oct::app::test {

class BscanTest : public testing::Test {
 protected:
  // Runs with the input "in.npy", the output "out.png" and these further arguments.
  int run(const std::vector<std::string>& further = {}) {
    std::vector<std::string> arguments{"bscan", toUtf8(input_), "-o", toUtf8(output_)};
    arguments.insert(arguments.end(), further.begin(), further.end());
    return runBare(arguments);
  }

  int runBare(const std::vector<std::string>& arguments) {
    const CapturedStream error(std::cerr);
    const CapturedStream out(std::cout);
    const int code = runProgram(arguments);
    errorText_ = error.text();
    outText_ = out.text();
    return code;
  }

  std::string file(const std::string& name) const { return toUtf8(folder_ / name); }

  TemporaryFolder folder_;
  std::filesystem::path input_ = folder_ / "in.npy";
  std::filesystem::path output_ = folder_ / "out.png";
  std::string errorText_;
  std::string outText_;
};

}  // namespace oct::app::test
