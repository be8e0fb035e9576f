#include "data/figure/lettering.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string_view>

#include <oct_font.h>
#include <stb/stb_truetype.h>

namespace oct::app {
namespace {

// Takes one character off the text; broken UTF-8 becomes the sign for that.
int take_character(std::string_view& text) {
  constexpr int replacement = 0xFFFD;
  const auto lead = static_cast<unsigned char>(text[0]);
  const std::size_t further = lead < 0x80       ? 0
                              : lead >> 5 == 6  ? 1
                              : lead >> 4 == 14 ? 2
                              : lead >> 3 == 30 ? 3
                                                : 4;
  text.remove_prefix(1);
  if (further == 0) return lead;
  if (further > 3 || text.size() < further) return replacement;
  int character = lead & (0x3F >> further);
  for (std::size_t i = 0; i < further; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte >> 6 != 2) return replacement;
    character = character << 6 | (byte & 0x3F);
  }
  text.remove_prefix(further);
  return character;
}

}  // namespace

struct Lettering::Font {
  stbtt_fontinfo info{};
  float scale = 0;
  int ascent = 0, descent = 0;  // whole pixels, descent downwards
};

Lettering::Lettering(double height)
    : font_([height] {
        auto font = std::make_unique<Font>();
        if (!stbtt_InitFont(&font->info, oct_font_begin, stbtt_GetFontOffsetForIndex(oct_font_begin, 0))) {
          throw std::runtime_error("the program's font cannot be read");
        }
        font->scale = stbtt_ScaleForPixelHeight(&font->info, static_cast<float>(height));
        int ascent = 0, descent = 0, gap = 0;
        stbtt_GetFontVMetrics(&font->info, &ascent, &descent, &gap);
        font->ascent = static_cast<int>(std::ceil(static_cast<float>(ascent) * font->scale));
        font->descent = static_cast<int>(std::ceil(static_cast<float>(-descent) * font->scale));
        return font;
      }()) {}

Lettering::~Lettering() = default;

TextPicture Lettering::picture_of(const std::string& text) const {
  struct Letter {
    int glyph;
    float place;
  };
  std::vector<Letter> letters;
  float end = 0;
  for (std::string_view rest = text; !rest.empty();) {
    const int glyph = stbtt_FindGlyphIndex(&font_->info, take_character(rest));
    if (!letters.empty()) {
      end += font_->scale *
             static_cast<float>(stbtt_GetGlyphKernAdvance(&font_->info, letters.back().glyph, glyph));
    }
    letters.push_back({glyph, end});
    int advance = 0, bearing = 0;
    stbtt_GetGlyphHMetrics(&font_->info, glyph, &advance, &bearing);
    end += font_->scale * static_cast<float>(advance);
  }
  TextPicture picture;
  picture.width = static_cast<int>(std::ceil(end)) + 2;  // what leans out of the first and the last letter
  picture.height = font_->ascent + font_->descent;
  picture.baseline = font_->ascent;
  picture.coverage.resize(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height));
  std::vector<std::uint8_t> pixels;
  for (const Letter& letter : letters) {
    const float whole = std::floor(letter.place);
    const float part = letter.place - whole;
    int left = 0, top = 0, right = 0, bottom = 0;
    stbtt_GetGlyphBitmapBoxSubpixel(&font_->info, letter.glyph, font_->scale, font_->scale, part, 0, &left,
                                    &top, &right, &bottom);
    const int width = right - left;
    const int height = bottom - top;
    if (width <= 0 || height <= 0) continue;
    pixels.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0);
    stbtt_MakeGlyphBitmapSubpixel(&font_->info, pixels.data(), width, height, width, font_->scale,
                                  font_->scale, part, 0, letter.glyph);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        const int column = static_cast<int>(whole) + 1 + left + x;
        const int row = font_->ascent + top + y;
        if (column < 0 || column >= picture.width || row < 0 || row >= picture.height) continue;
        std::uint8_t& target = picture.coverage[static_cast<std::size_t>(row * picture.width + column)];
        target = std::max(target, pixels[static_cast<std::size_t>(y * width + x)]);
      }
    }
  }
  return picture;
}

}  // namespace oct::app
