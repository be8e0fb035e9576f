#include "apps/test_files.h"

namespace oct::app::test {
namespace {

using TiffReader = ReaderTest;

TEST_F(TiffReader, SaysThatTiffNeedsTheOtherBuild) {
  expect_refused({{std::string("II\x2a\0\0\0\0\0", 8), "TIFF input needs the Linux build"}});
}

}  // namespace
}  // namespace oct::app::test
