// A part of a picture that is too large for one frame.
#pragma once

#include <array>
#include <optional>

namespace oct {

struct PicturePart {
  // Of the whole picture, in pixels.
  int width = 0;
  int height = 0;
  // Where the part begins: the pixel of the picture at the target's lower left corner.
  int x = 0;
  int y = 0;

  // Factors and summands for x and y that lead from the picture's device coordinates to those of the part's target.
  struct ToTarget {
    std::array<float, 2> scale;
    std::array<float, 2> offset;
  };
  ToTarget to_target(int target_width, int target_height) const;

  bool operator==(const PicturePart&) const = default;

  // As a client gives it: none for a picture without a size. Throws std::invalid_argument.
  static std::optional<PicturePart> of(unsigned width, unsigned height, int x, int y);
};

}  // namespace oct
