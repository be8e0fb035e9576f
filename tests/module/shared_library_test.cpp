#include "module/shared_library.h"

#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace oct::test {
namespace {

namespace fs = std::filesystem;

std::string utf8(const fs::path& path) {
  const std::u8string text = path.generic_u8string();  // forward slashes
  return std::string(text.begin(), text.end());
}

class SharedLibraryTest : public testing::Test {
 protected:
  // A copy that no module of the process is loaded from, in a folder that no code page can name.
  SharedLibraryTest() {
    fs::create_directories(folder_);
    fs::copy_file(OCT_SOME_LIBRARY, copy_, fs::copy_options::overwrite_existing);
  }
  ~SharedLibraryTest() override {
    std::error_code loaded;  // a module's file cannot be removed on Windows
    fs::remove_all(folder_, loaded);
  }

  // Another one for each process: several builds are tested at the same time.
  fs::path folder_ =
      fs::temp_directory_path() /
      (u8"Ger\u00e4t \u0416\u4e2d " + fs::path(std::to_string(std::random_device{}())).u8string());
  fs::path copy_ = folder_ / fs::path(OCT_SOME_LIBRARY).filename();
};

TEST_F(SharedLibraryTest, PathsAreUtf8WithForwardSlashes) {
  const SharedLibrary library(utf8(copy_));
  EXPECT_NE(library.symbol("startMeasurement"), nullptr);
  EXPECT_EQ(library.symbol("noSuchFunction"), nullptr);
  // The same module again, not a second copy of it.
  EXPECT_EQ(SharedLibrary(utf8(copy_)).symbol("startMeasurement"), library.symbol("startMeasurement"));
}

TEST_F(SharedLibraryTest, TheReasonIsTheSystems) {
  for (const std::string& name :
       {utf8(folder_ / "nothing.so"), utf8(folder_), std::string("no_such_library")}) {
    try {
      SharedLibrary{name};
      FAIL() << name;
    } catch (const std::runtime_error& error) {
      const std::string reason = error.what();
      EXPECT_GT(reason.size(), 3U) << name;
      EXPECT_EQ(reason.find_last_not_of("\r\n "), reason.size() - 1) << reason;
    }
  }
}

}  // namespace
}  // namespace oct::test
