// A machine that has fonts, but not the one that is asked for.
#include <algorithm>

#include <windows.h>
#include <gtest/gtest.h>

#include "volume/text/text_rasteriser.h"

namespace oct::test {
namespace {

int CALLBACK found(const LOGFONTA*, const TEXTMETRICA*, DWORD, LPARAM result) {
  *reinterpret_cast<bool*>(result) = true;
  return 0;
}

bool face_exists(const char* name) {
  LOGFONTA wanted{};
  wanted.lfCharSet = DEFAULT_CHARSET;
  std::copy_n(name, std::char_traits<char>::length(name), wanted.lfFaceName);
  bool exists = false;
  const HDC screen = GetDC(nullptr);
  EnumFontFamiliesExA(screen, &wanted, found, reinterpret_cast<LPARAM>(&exists), 0);
  ReleaseDC(nullptr, screen);
  return exists;
}

TEST(MissingFaceTest, AnotherFaceTakesItsPlace) {
  if (face_exists("Segoe UI")) GTEST_SKIP() << "this machine has the face Segoe UI";
  const auto ink = [](bool emphasis) {
    const TextPicture picture = TextRasteriser(30, emphasis).rasterise("0.25 mm");
    EXPECT_NEAR(picture.height, 30, 1);
    return std::count_if(picture.pixels.begin(), picture.pixels.end(), [](int level) { return level > 127; });
  };
  EXPECT_GT(ink(false), 500);
  EXPECT_GT(ink(true), ink(false));
}

}  // namespace
}  // namespace oct::test
