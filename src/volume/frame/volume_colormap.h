// The textures of a volume renderer's colour maps, as one frame draws with them.
#pragma once

#include <array>

#include "gl/colormap.h"
#include "volume/frame/sample_colors.h"
#include "volume/frame/volume_settings.h"

namespace oct {

class VolumeColormap {
 public:
  // Uploads the colours if they are not those of the texture; true when it did.
  bool update(const ColormapSettings& settings);
  void update_samples(const ColormapSettings& settings, SampleOpacity opacity) {
    samples_.upload(settings.colors, opacity);
  }
  void release();

  float lower() const { return lower_; }
  float upper() const { return upper_; }
  float visible_from() const { return visible_from_; }  // up to here a composite shows nothing
  GLuint texture() const { return texture_.get(); }
  GLuint sample_texture() const { return samples_.get(); }

 private:
  float lower_ = 0.0F;
  float upper_ = 1.0F;
  float visible_from_ = 0.0F;
  ColormapTexture texture_;
  SampleColorsTexture samples_;
};

class VolumeColormaps {
 public:
  // At the beginning of a frame.
  void update(const VolumeSettings& settings);
  void release();  // deletes the textures

  // Throws StateError "Program has not been compiled yet." in a frame whose settings have none: both are
  // made together.
  const VolumeColormap& at(ColormapRole role) const;

 private:
  std::array<VolumeColormap, 4> colormaps_;
  bool exist_ = false;
};

}  // namespace oct
