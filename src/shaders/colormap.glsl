// Colour of a normalised value: the first entry at 0, the last at 1, linear in between. Interpolated here and not by
// the texture unit, whose weights have eight bits: on a map of two colours, or blended as an overlay, that shows.
vec4 color_of(sampler1D colors, float value) {
  int last = textureSize(colors, 0) - 1;
  float position = clamp(value, 0.0, 1.0) * float(last);
  int below = int(position);
  return mix(texelFetch(colors, below, 0), texelFetch(colors, min(below + 1, last), 0), position - float(below));
}
