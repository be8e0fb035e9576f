// Turns short texts into pictures with the operating system's fonts. One source per platform.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace oct {

// White glyphs on black, four bytes per pixel, bottom row first.
struct TextPicture {
  int width = 0;  // pixels
  int height = 0;
  std::vector<std::uint8_t> pixels;
};

// One font: sans-serif, of the given cell height in pixels, upright or, emphasised, bold and italic.
class TextRasteriser {
 public:
  // Throws a SystemError when the system has no font to give.
  TextRasteriser(int height, bool emphasis);
  ~TextRasteriser();
  TextRasteriser(const TextRasteriser&) = delete;
  TextRasteriser& operator=(const TextRasteriser&) = delete;

  // One line of text, a byte per character: what lies beyond ASCII depends on the machine's code page. No
  // pixels for an empty text. Throws a SystemError.
  TextPicture rasterise(const std::string& text);

 private:
  struct Native;
  std::unique_ptr<Native> native_;
};

}  // namespace oct
