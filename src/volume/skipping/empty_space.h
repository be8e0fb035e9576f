// Where a volume has nothing to see, for rays to jump over.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "gl/gl_names.h"
#include "volume/skipping/brick_maxima.h"
#include "volume/skipping/visibility.h"

namespace oct {

// Tables in a texture: for each limit and octant the side, in bricks, of the largest empty cube that begins at a
// brick. They are made when a frame needs them and what they are made of has changed: values, limits, or a turn of
// the view that brings another octant. Rendering thread only.
class EmptySpace {
 public:
  // Both of one extent and side; the overlay may be null. Throws what OpenGL refuses.
  void update(BrickMaxima& volume, BrickMaxima* overlay, const Visibility& visibility);
  void release();

  GLuint texture() const { return texture_.get(); }

 private:
  struct Basis {
    std::uint64_t volume = 0;   // revisions
    std::uint64_t overlay = 0;  // 0: there is none
    BrickGrid grid;
    Visibility visibility;
  };

  void begin_tables(const Basis& basis, BrickMaxima& volume, BrickMaxima* overlay);
  void make(int limit, std::size_t octant);

  gl::Texture texture_;
  BrickGrid allocated_;
  int allocated_limits_ = 0;
  Basis basis_;
  std::array<bool, 8> made_{};
  std::vector<float> maxima_;
  std::vector<std::uint8_t> sides_;
};

}  // namespace oct
