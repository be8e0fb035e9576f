#include "scene/offscreen_picture.h"

#include <algorithm>

namespace oct::app {
namespace {

constexpr unsigned margin = 16;  // pixels

struct Stretch {
  unsigned first = 0;
  unsigned length = 0;
};

// What a side is cut into, without margins.
std::vector<Stretch> cut(unsigned side, unsigned largest) {
  if (side <= largest) return {{0, side}};
  const unsigned length = std::max(largest, 2 * margin + 1) - 2 * margin;
  std::vector<Stretch> stretches;
  for (unsigned first = 0; first < side; first += length) {
    stretches.push_back({first, std::min(length, side - first)});
  }
  return stretches;
}

Stretch with_margin(Stretch kept, unsigned side) {
  const unsigned first = kept.first - std::min(kept.first, margin);
  return {first, std::min(side, kept.first + kept.length + margin) - first};
}

}  // namespace

std::vector<Tile> tiles_of(PictureSize size, unsigned largest) {
  std::vector<Tile> tiles;
  for (const Stretch rows : cut(size.height, largest)) {
    const Stretch frame_rows = with_margin(rows, size.height);
    for (const Stretch columns : cut(size.width, largest)) {
      const Stretch frame_columns = with_margin(columns, size.width);
      tiles.push_back({{frame_columns.first, frame_rows.first, {frame_columns.length, frame_rows.length}},
                       {columns.first, rows.first, {columns.length, rows.length}}});
    }
  }
  return tiles;
}

void copy_tile(const Tile& tile, std::span<const std::uint8_t> rgba, Picture& picture) {
  const auto& [frame, kept] = tile;
  for (unsigned row = 0; row < kept.size.height; ++row) {
    const std::size_t from = std::size_t{kept.y + row - frame.y} * frame.size.width + (kept.x - frame.x);
    const std::size_t to = std::size_t{kept.y + row} * picture.size.width + kept.x;
    for (std::size_t column = 0; column < kept.size.width; ++column) {
      std::copy_n(&rgba[(from + column) * 4], 3, &picture.pixels[(to + column) * 3]);
    }
  }
}

}  // namespace oct::app
