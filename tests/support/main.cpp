// Runs the tests of a program. What all processes of the machine share, the settings of the log and the trace
// of render calls, is this process's own here, so that programs may run side by side.
#include <filesystem>
#include <random>

#include <gtest/gtest.h>

#include "core/log.h"
#include "hosting/loop/render_trace.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const auto trace = std::filesystem::temp_directory_path() /
                     ("oct_render_calls_" + std::to_string(std::random_device{}()) + ".txt");
  oct::set_log_block("");
  oct::set_render_trace_file(trace);
  const int result = RUN_ALL_TESTS();
  oct::set_render_trace_file("");
  std::error_code ignored;
  std::filesystem::remove(trace, ignored);
  return result;
}
