// The texel floor(tex_coord * image_size) below a pixel centre, exactly. At every even reduction that product is a
// whole number, where the rounding of an interpolated coordinate would decide between two texels, differently on
// every driver. Here rounding only has to find the pixel, half a pixel away from the next; the float quotient, taken a
// little too small, is then the texel or the one before, and is put right in integers. (An integer division would cost
// several times as much.)
ivec2 texel_at(vec2 tex_coord, vec2 displaySize, ivec2 image_size) {
  vec2 pixels = displaySize.yx;  // along the texture's axes
  ivec2 unit = 2 * ivec2(pixels);
  ivec2 position = (2 * ivec2(tex_coord * pixels) + 1) * image_size;  // in parts of a texel, unit to one
  ivec2 texel = ivec2(vec2(position) * ((1.0 - 1e-6) / vec2(unit)));
  return texel + ivec2(greaterThanEqual(position - texel * unit, unit));
}
