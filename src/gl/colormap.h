// Colour maps: arrays of 32-bit words, bytes in memory order red, green, blue, alpha.
#pragma once

#include <cstdint>
#include <vector>

#include "gl/gl_names.h"

namespace oct {

using Colormap = std::vector<std::uint32_t>;

// Black to white, opaque: what a renderer shows until it is given a map.
Colormap default_colormap();

// Copies a client's map. Throws std::invalid_argument for a negative count, and
// for null with a count above zero.
Colormap copy_colormap(const void* colors, int count);

// Uploads the map as a one-dimensional RGBA8 texture, making the texture if there is none. Linear between
// entries, clamped at both ends. Texture unit 0 is used and left without a 1-D texture.
void upload_colormap(gl::Texture& texture, const Colormap& colormap);

}  // namespace oct
