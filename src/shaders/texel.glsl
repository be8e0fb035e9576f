// The texel floor(texCoord * imageSize) below a pixel centre, exactly. At every even reduction that product is a
// whole number, where the rounding of an interpolated coordinate would decide between two texels, differently on
// every driver. Here rounding only has to find the pixel, half a pixel away from the next; the rest is integer.
ivec2 texelAt(vec2 texCoord, vec2 displaySize, ivec2 imageSize) {
  ivec2 pixels = ivec2(displaySize).yx;  // along the texture's axes
  ivec2 pixel = ivec2(floor(texCoord * vec2(pixels)));
  return clamp(((2 * pixel + 1) * imageSize) / (2 * pixels), ivec2(0), imageSize - 1);
}
