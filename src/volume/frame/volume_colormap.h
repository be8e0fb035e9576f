// The colour map objects of a volume renderer. They live from init to uninit.
#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include "gl/colormap.h"

namespace oct {

class VolumeColormap {
 public:
  void set_colors(Colormap colors);
  void set_boundaries(double lower, double upper);
  float lower() const { return lower_; }
  float upper() const { return upper_; }

  // Uploads the colours if they changed since the last upload; true when it did.
  bool upload_if_changed() { return texture_.upload(colors_); }
  void release_texture() { texture_.release(); }
  GLuint texture() const { return texture_.get(); }

 private:
  RevisedColormap colors_;
  float lower_ = 0.0F;
  float upper_ = 1.0F;
  ColormapTexture texture_;
};

enum class ColormapRole : std::size_t { main, overlay, secondary, surface };

class VolumeColormaps {
 public:
  void create();   // those that do not exist; all are uploaded at the next frame
  void release();  // deletes them

  // Null before create.
  VolumeColormap* find(ColormapRole role);
  // Throws std::runtime_error "Program has not been compiled yet." before create: both are made together.
  const VolumeColormap& at(ColormapRole role) const;

  void upload_changed();

 private:
  std::array<std::optional<VolumeColormap>, 4> colormaps_;
};

}  // namespace oct
