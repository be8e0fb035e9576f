#include "data/colormap.h"

#include <gtest/gtest.h>

#include "test_files.h"

namespace oct::app::test {
namespace {

// These maps are made to get brighter evenly; a slip in a table would show as a step.
TEST(NamedColormaps, GetBrighterEvenlyBetweenTheirKnownEnds) {
  const auto check = [](const std::string& name, Rgba first, Rgba last) {
    SCOPED_TRACE(name);
    const Colormap colors = loadColormap(name);
    ASSERT_EQ(colors.size(), 256u);
    EXPECT_EQ(colors.front(), first);
    EXPECT_EQ(colors.back(), last);
    const auto luma = [](Rgba color) { return 0.2126 * color[0] + 0.7152 * color[1] + 0.0722 * color[2]; };
    for (std::size_t i = 1; i < colors.size(); ++i) {
      EXPECT_GT(luma(colors[i]), luma(colors[i - 1]) - 0.5);
      EXPECT_LT(luma(colors[i]), luma(colors[i - 1]) + 3);
    }
  };
  check("gray", {0, 0, 0, 255}, {255, 255, 255, 255});
  check("viridis", {68, 1, 84, 255}, {253, 231, 37, 255});
  check("inferno", {0, 0, 4, 255}, {252, 255, 164, 255});
  check("magma", {0, 0, 4, 255}, {252, 253, 191, 255});
  check("cividis", {0, 34, 78, 255}, {254, 232, 56, 255});
}

TEST(NamedColormaps, AreListedWhenTheNameIsUnknown) {
  expectFailure(ExitCode::BadCommandLine, "'jet'; there are gray, viridis, inferno, magma, cividis",
                [] { loadColormap("jet"); });
}

TEST(ColormapArithmetic, ScalesAlphaAndFlattensOntoTheBackground) {
  Colormap scaled{{1, 2, 3, 255}, {4, 5, 6, 100}};
  scaleAlpha(scaled, 0.5);
  EXPECT_EQ(scaled, (Colormap{{1, 2, 3, 128}, {4, 5, 6, 50}}));
  Colormap flat{{200, 100, 0, 0}, {200, 100, 0, 255}, {200, 100, 0, 51}};
  flattenOnto(flat, 0x0A141E);
  EXPECT_EQ(flat, (Colormap{{10, 20, 30, 255}, {200, 100, 0, 255}, {48, 36, 24, 255}}));
}

class ColormapFile : public testing::Test {
 protected:
  Colormap read(const std::string& text) {
    writeFile(path_, text);
    return loadColormap(toUtf8(path_));
  }

  void expectRefused(const std::string& text, const std::string& words) {
    SCOPED_TRACE(text);
    expectFailure(ExitCode::InputFailed, "map.csv: " + words, [&] { read(text); });
  }

  TemporaryFolder folder_;
  std::filesystem::path path_ = folder_ / "map.csv";
};

TEST_F(ColormapFile, ReadsWholeNumbersAndFractions) {
  EXPECT_EQ(read("0,10,20\n255,1,0\n"), (Colormap{{0, 10, 20, 255}, {255, 1, 0, 255}}));
  EXPECT_EQ(read("0,0.5,1,0\n1,.25,1e-1,0.5"), (Colormap{{0, 128, 255, 0}, {255, 64, 26, 128}}));
  // No number above 1: a map from black to white, and not from black to almost black.
  EXPECT_EQ(read("0,0,0\n1,1,1\n"), (Colormap{{0, 0, 0, 255}, {255, 255, 255, 255}}));
  // Header, blank lines and foreign line ends.
  EXPECT_EQ(read("\xEF\xBB\xBFred, green, blue\r\n\r\n 0, 10 ,20\r\n255,1,0\r\n\r\n"),
            (Colormap{{0, 10, 20, 255}, {255, 1, 0, 255}}));
}

TEST_F(ColormapFile, NamesTheLineOfAnError) {
  expectRefused("r,g,b\n0,0,0\n1,x,1\n", "line 3: not a number: 'x'");
  expectRefused("0,0,0\n1,,1\n", "line 2: not a number: ''");
  expectRefused("0,0,0\n1,1,1,\n", "line 2: not a number: ''");
  expectRefused("0,0,0\n1 1 1\n", "line 2: not a number: '1 1 1'");
  expectRefused("0,0,0\n256,0,0\n", "line 2: not between 0 and 255: 256");
  expectRefused("0,0,0\n-1,0,0\n", "line 2: not between 0 and 255: -1");
  expectRefused("0,0,0\nnan,0,0\n", "line 2: not between 0 and 255: nan");
  expectRefused("0,0\n1,1\n", "line 1: 3 or 4 numbers");
  expectRefused("0,0,0,0,0\n", "line 1: 3 or 4 numbers");
  expectRefused("0,0,0\n\n1,1,1,1\n", "line 3: 4 numbers, but 3");
  expectRefused("0,0,0\n0.5,0,0\n9,0,0\n", "line 2: a fraction, but line 3");
  expectRefused("r,g,b\nred,green,blue\n0,0,0\n", "line 2: not a number: 'red'");
}

TEST_F(ColormapFile, LimitsTheNumberOfColours) {
  const auto lines = [](int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += "0,0,0\n";
    return text;
  };
  expectRefused("r,g,b\n", "a colour map has from 2 to 4096 colours, this one 0");
  expectRefused(lines(1), "a colour map has from 2 to 4096 colours, this one 1");
  expectRefused(lines(4097), "a colour map has from 2 to 4096 colours, this one 4097");
  EXPECT_EQ(read(lines(4096)).size(), 4096u);
}

}  // namespace
}  // namespace oct::app::test
