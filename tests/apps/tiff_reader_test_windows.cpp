#include <gtest/gtest.h>

#include "data/image_reader.h"
#include "test_files.h"

namespace oct::app::test {
namespace {

TEST(TiffReader, SaysThatTiffNeedsTheOtherBuild) {
  const TemporaryFolder folder;
  writeFile(folder / "image.tif", std::string("II\x2a\0\0\0\0\0", 8));
  expectFailure(ExitCode::InputFailed, "image.tif: TIFF input needs the Linux build",
                [&] { loadImage(folder / "image.tif", {}, false); });
}

}  // namespace
}  // namespace oct::app::test
