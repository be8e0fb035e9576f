#include "apps/test_files.h"
#include "data/colormap_reader.h"

namespace oct::app::test {
namespace {

class ColormapFile : public ReaderTest {
 protected:
  Colormap read(const std::string& text) {
    write_file(path_, text);
    return read_colormap(path_);
  }
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
  const auto lines = [](int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += "0,0,0\n";
    return text;
  };
  EXPECT_EQ(read(lines(4096)).size(), 4096U);
  const std::pair<std::string, std::string> cases[] = {
      {"r,g,b\n0,0,0\n1,x,1\n", "line 3: not a number: 'x'"},
      {"0,0,0\n1,,1\n", "line 2: not a number: ''"},
      {"0,0,0\n1,1,1,\n", "line 2: not a number: ''"},
      {"0,0,0\n1 1 1\n", "line 2: not a number: '1 1 1'"},
      {"0,0,0\n256,0,0\n", "line 2: not between 0 and 255: 256"},
      {"0,0,0\n-1,0,0\n", "line 2: not between 0 and 255: -1"},
      {"0,0,0\nnan,0,0\n", "line 2: not between 0 and 255: nan"},
      {"0,0\n1,1\n", "line 1: 3 or 4 numbers"},
      {"0,0,0,0,0\n", "line 1: 3 or 4 numbers"},
      {"0,0,0\n\n1,1,1,1\n", "line 3: 4 numbers, but 3"},
      {"0,0,0\n0.5,0,0\n9,0,0\n", "line 2: a fraction, but line 3"},
      {"r,g,b\nred,green,blue\n0,0,0\n", "line 2: not a number: 'red'"},
      {"r,g,b\n", "a colour map has from 2 to 4096 colours, this one 0"},
      {lines(1), "a colour map has from 2 to 4096 colours, this one 1"},
      {lines(4097), "a colour map has from 2 to 4096 colours, this one 4097"}};
  for (const auto& [text, words] : cases) {
    expect_in(to_utf8(path_) + ": " + words, error_of<ReadError>([&, &text = text] { read(text); }));
  }
}

}  // namespace
}  // namespace oct::app::test
