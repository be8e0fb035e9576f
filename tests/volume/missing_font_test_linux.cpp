// A machine without any font.
#include <fontconfig/fontconfig.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "volume/text_rasteriser.h"

namespace oct::test {
namespace {

TEST(MissingFontTest, IsAClearError) {
  FcConfigSetCurrent(FcConfigCreate());
  std::string message = "(none)";
  try {
    TextRasteriser rasteriser(18, false);
  } catch (const std::runtime_error& error) {
    message = error.what();
  }
  FcInitReinitialize();
  EXPECT_EQ(message, "No font was found for text labels. ");
  EXPECT_NO_THROW(TextRasteriser(18, false));
}

}  // namespace
}  // namespace oct::test
