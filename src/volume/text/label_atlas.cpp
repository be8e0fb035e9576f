#include "volume/text/label_atlas.h"

#include <algorithm>
#include <cstddef>

namespace oct {
namespace {

constexpr int gap = 1;  // pixels between texts, so that rounding at a label's rim shows nothing of another
constexpr int usual_width = 1024;  // as wide as every driver's textures may be

std::size_t offset(int width, int x, int y) {
  return (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) * 4;
}

}  // namespace

LabelAtlas::LabelAtlas(int widest) : width_(std::max(widest + gap, usual_width)) {}

void LabelAtlas::add(const StyledText& text, const TextPicture& picture) {
  if (next_.x + picture.width + gap > width_) next_ = {0, height_};
  height_ = std::max(height_, next_.y + picture.height + gap);
  pixels_.resize(offset(width_, 0, height_));
  for (int row = 0; row < picture.height; ++row) {
    std::copy_n(picture.pixels.data() + offset(picture.width, 0, row), picture.width * 4,
                pixels_.data() + offset(width_, next_.x, next_.y + row));
  }
  places_[text] = next_;
  next_.x += picture.width + gap;
}

std::optional<glm::ivec2> LabelAtlas::find(const StyledText& text) const {
  const auto place = places_.find(text);
  if (place == places_.end()) return std::nullopt;
  return place->second;
}

}  // namespace oct
