// Pictures of texts side by side, as they go into one texture. No OpenGL.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <glm/vec2.hpp>

#include "volume/text/text_rasteriser.h"

namespace oct {

struct StyledText {
  std::string text;
  bool emphasis = false;
  auto operator<=>(const StyledText&) const = default;
};

// Holds whole texts and not characters: the systems' rasterisers space and kern the characters of a text by rules of
// their own, and a label is to show every pixel of its text.
class LabelAtlas {
 public:
  // In pixels; the widest text that will come. Rows are filled to 1024 pixels and more.
  explicit LabelAtlas(int widest);

  // Each text once.
  void add(const StyledText& text, const TextPicture& picture);

  // Its lower left pixel. None for a text that was not added.
  std::optional<glm::ivec2> find(const StyledText& text) const;

  int width() const { return width_; }
  int height() const { return height_; }
  std::span<const std::uint8_t> pixels() const { return pixels_; }  // four bytes per pixel, bottom row first

 private:
  int width_;
  int height_ = 0;
  glm::ivec2 next_{0};
  std::map<StyledText, glm::ivec2> places_;
  std::vector<std::uint8_t> pixels_;
};

}  // namespace oct
