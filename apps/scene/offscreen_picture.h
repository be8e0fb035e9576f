// Frames of an offscreen target as pictures.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "client/offscreen_target.h"
#include "data/picture.h"

namespace oct::app {

// A larger picture is drawn in tiles: drivers have limits, and frames take memory.
inline constexpr unsigned largest_tile = 4096;

// Counted from the picture's upper left corner.
struct PictureArea {
  unsigned x = 0;
  unsigned y = 0;
  PictureSize size;
};

// A tile is cut out of a frame that is a little larger, because a line at the edge of a frame lacks half of its width.
struct Tile {
  PictureArea frame;
  PictureArea kept;
};

std::vector<Tile> tiles_of(PictureSize size, unsigned largest);

// rgba: the frame's pixels.
void copy_tile(const Tile& tile, std::span<const std::uint8_t> rgba, Picture& picture);

// Draws a picture with a function, which is called for each tile. set_part: setRendererPart() or setDisplayPart() of the
// handle.
template <class Handle, class Draw>
Picture draw_picture(OffscreenTarget& target, PictureSize size, unsigned largest,
                     void (*set_part)(Handle, unsigned, unsigned, int, int), Handle renderer, Draw draw) {
  Picture picture{size, {}};
  picture.pixels.resize(std::size_t{size.width} * size.height * picture.channels);
  const std::vector<Tile> tiles = tiles_of(size, largest);
  std::vector<std::uint8_t> pixels;
  for (const Tile& tile : tiles) {
    const PictureArea& frame = tile.frame;
    if (tiles.size() > 1) {
      checked(set_part, renderer, size.width, size.height, static_cast<int>(frame.x),
              static_cast<int>(size.height - frame.y - frame.size.height));
    }
    target.render(frame.size.width, frame.size.height, pixels, draw);
    copy_tile(tile, pixels, picture);
  }
  checked(set_part, renderer, 0U, 0U, 0, 0);
  return picture;
}

}  // namespace oct::app
