// The log's settings as another process finds them.
#include <cstring>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "core/shared_block.h"
#include "library/dynamic_library.h"
#include "oct_rendering/oct_rendering.h"

namespace oct::test {
namespace {

TEST(SharedLogTest, NameOfTheFileIsInTheBlockOfAllProcesses) {
  const DynamicLibrary library(OCT_LIBRARY_FILE);
  const auto set_log_file = library.function<decltype(setRendererLogFile)>("setRendererLogFile");
  const SharedBlock block("oct_log_settings", 1024);
  const std::string name = "no/such/folder/" + std::to_string(std::random_device{}());
  std::string found;
  // Others on the machine may write to the block in between, but not each time.
  for (int i = 0; i < 20 && found != name; ++i) {
    set_log_file(name.c_str());
    found.assign(block.data(), strnlen(block.data(), 1024));
  }
  EXPECT_EQ(found, name);
  set_log_file(nullptr);
}

}  // namespace
}  // namespace oct::test
