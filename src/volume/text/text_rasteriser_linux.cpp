#include <algorithm>
#include <type_traits>
#include <utility>

#include <fontconfig/fontconfig.h>
#include <ft2build.h>

#include FT_FREETYPE_H
#include FT_SYNTHESIS_H

#include "core/exception.h"
#include "volume/text/text_rasteriser.h"

namespace oct {
namespace {

template <auto Release>
struct Releaser {
  template <class T>
  void operator()(T* object) const {
    Release(object);
  }
};

using Pattern = std::unique_ptr<FcPattern, Releaser<FcPatternDestroy>>;
using Library = std::unique_ptr<std::remove_pointer_t<FT_Library>, Releaser<FT_Done_FreeType>>;
using Face = std::unique_ptr<std::remove_pointer_t<FT_Face>, Releaser<FT_Done_Face>>;

constexpr int fixed_pixel = 64;  // FreeType counts in 1/64 of a pixel

int pixels_up(FT_Pos length) {
  return static_cast<int>((length + fixed_pixel - 1) / fixed_pixel);
}
int pixels(FT_Pos length) {
  return static_cast<int>((length + fixed_pixel / 2) / fixed_pixel);
}

const FcChar8* chars(const char* text) {
  return reinterpret_cast<const FcChar8*>(text);
}

Pattern match_font(bool emphasis) {
  const Pattern wanted(FcPatternCreate());
  if (!wanted) return nullptr;
  FcPatternAddString(wanted.get(), FC_FAMILY, chars("Segoe UI"));
  FcPatternAddString(wanted.get(), FC_FAMILY, chars("sans-serif"));
  FcPatternAddInteger(wanted.get(), FC_WEIGHT, emphasis ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
  FcPatternAddInteger(wanted.get(), FC_SLANT, emphasis ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
  FcPatternAddBool(wanted.get(), FC_SCALABLE, FcTrue);
  FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
  FcDefaultSubstitute(wanted.get());
  FcResult result = FcResultNoMatch;
  return Pattern(FcFontMatch(nullptr, wanted.get(), &result));
}

}  // namespace

struct TextRasteriser::Native {
  struct Extent {
    int width = 0;
    int left = 0;  // of the first pixel, negative where a glyph begins before its origin
  };

  Library library;
  Face face;
  bool embolden = false;
  int ascent = 0;  // pixels above and below the base line
  int descent = 0;

  Native(int height, bool emphasis) {
    FT_Library new_library = nullptr;
    if (FT_Init_FreeType(&new_library) != 0) throw SystemError("FreeType could not be initialized. ");
    library.reset(new_library);
    open_face(match_font(emphasis).get());
    set_height(height);
  }

  void open_face(const FcPattern* font) {
    FcChar8* file = nullptr;
    if (!font || FcPatternGetString(font, FC_FILE, 0, &file) != FcResultMatch) {
      throw SystemError("No font was found for text labels. ");
    }
    const std::string name(reinterpret_cast<const char*>(file));
    int index = 0;
    FcPatternGetInteger(font, FC_INDEX, 0, &index);
    FT_Face new_face = nullptr;
    if (FT_New_Face(library.get(), name.c_str(), index, &new_face) != 0) {
      throw SystemError("The font file could not be opened: " + name);
    }
    face.reset(new_face);

    // A family without a bold or an italic face is made to look so.
    FcBool bold = FcFalse;
    embolden = FcPatternGetBool(font, FC_EMBOLDEN, 0, &bold) == FcResultMatch && bold;
    FcMatrix* slant = nullptr;
    if (FcPatternGetMatrix(font, FC_MATRIX, 0, &slant) == FcResultMatch) {
      const auto fixed = [](double value) { return static_cast<FT_Fixed>(value * 65536.0); };
      FT_Matrix matrix{fixed(slant->xx), fixed(slant->xy), fixed(slant->yx), fixed(slant->yy)};
      FT_Set_Transform(face.get(), &matrix, nullptr);
    }
  }

  // The cell, from the deepest descender to the highest ascender, is as high as asked for.
  void set_height(int height) {
    FT_Size_RequestRec request{FT_SIZE_REQUEST_TYPE_REAL_DIM, 0, height * fixed_pixel, 0, 0};
    if (FT_Request_Size(face.get(), &request) != 0) throw SystemError("The font has no such size. ");
    ascent = pixels_up(face->size->metrics.ascender);
    ascent = std::min(ascent, height);
    descent = height - ascent;
  }

  // Leaves the glyph's picture in the face's slot.
  FT_GlyphSlot load(char character) const {
    const auto code = static_cast<FT_ULong>(static_cast<unsigned char>(character));
    if (FT_Load_Char(face.get(), code, FT_LOAD_TARGET_LIGHT) != 0) {
      throw SystemError("A character could not be loaded from the font. ");
    }
    const FT_GlyphSlot slot = face->glyph;
    if (embolden) FT_GlyphSlot_Embolden(slot);
    if (FT_Render_Glyph(slot, FT_RENDER_MODE_NORMAL) != 0) {
      throw SystemError("A character could not be drawn. ");
    }
    return slot;
  }

  // Calls use(slot, pen) for every character, the pen in pixels from the text's
  // origin, and returns the pen's end.
  template <class Use>
  int walk(const std::string& text, Use&& use) const {
    FT_Pos pen = 0;
    FT_UInt previous = 0;
    for (const char character : text) {
      const FT_UInt glyph = FT_Get_Char_Index(face.get(), static_cast<unsigned char>(character));
      FT_Vector kerning{};
      FT_Get_Kerning(face.get(), previous, glyph, FT_KERNING_DEFAULT, &kerning);
      previous = glyph;
      pen += kerning.x;
      const FT_GlyphSlot slot = load(character);
      use(slot, pixels(pen));
      pen += slot->advance.x;
    }
    return pixels(pen);
  }

  Extent measure(const std::string& text) const {
    int left = 0;
    int right = 0;
    const int end = walk(text, [&](FT_GlyphSlot slot, int pen) {
      left = std::min(left, pen + slot->bitmap_left);
      right = std::max(right, pen + slot->bitmap_left + static_cast<int>(slot->bitmap.width));
    });
    return {std::max(end, right) - left, left};
  }

  void draw(const std::string& text, int left, TextPicture& picture) const {
    walk(text, [&](FT_GlyphSlot slot, int pen) {
      const FT_Bitmap& glyph = slot->bitmap;
      const int x0 = pen + slot->bitmap_left - left;
      const int top = descent + slot->bitmap_top;  // rows from the bottom, one past the glyph's first row
      for (int row = 0; row < static_cast<int>(glyph.rows); ++row) {
        const int y = top - 1 - row;
        if (y < 0 || y >= picture.height) continue;  // an accent above the cell
        for (int column = 0; column < static_cast<int>(glyph.width); ++column) {
          const std::uint8_t coverage = glyph.buffer[row * glyph.pitch + column];
          std::uint8_t* const pixel =
              picture.pixels.data() + (static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                                       static_cast<std::size_t>(x0 + column)) *
                                          4;
          std::fill_n(pixel, 3, std::max(pixel[0], coverage));  // kerned neighbours may touch
        }
      }
    });
  }
};

TextRasteriser::TextRasteriser(int height, bool emphasis)
    : native_(std::make_unique<Native>(height, emphasis)) {}
TextRasteriser::~TextRasteriser() = default;

TextPicture TextRasteriser::rasterise(const std::string& text) {
  TextPicture picture;
  if (text.empty()) return picture;
  const Native::Extent extent = native_->measure(text);
  picture.width = extent.width;
  picture.height = native_->ascent + native_->descent;
  picture.pixels.resize(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height) *
                        4);
  native_->draw(text, extent.left, picture);
  return picture;
}

}  // namespace oct
