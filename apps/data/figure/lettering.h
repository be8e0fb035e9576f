// Text as pixels, in the font that the program brings along.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace oct::app {

// Coverage of pixels, row by row.
struct TextPicture {
  int width = 0;
  int height = 0;
  int baseline = 0;  // rows above it
  std::vector<std::uint8_t> coverage;
};

class Lettering {
 public:
  explicit Lettering(double height);  // pixels from the highest letter's top to the lowest one's bottom
  ~Lettering();
  Lettering(const Lettering&) = delete;
  Lettering& operator=(const Lettering&) = delete;

  // One line of UTF-8. What the font lacks shows as its box for missing letters.
  TextPicture picture_of(const std::string& text) const;

 private:
  struct Font;
  const std::unique_ptr<const Font> font_;
};

}  // namespace oct::app
