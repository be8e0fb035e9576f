// Colour of a normalised value: the centre of the first entry at 0, the centre of the last at 1.
vec4 colorOf(sampler1D colors, float value) {
  float count = float(textureSize(colors, 0));
  return texture(colors, (0.5 + clamp(value, 0.0, 1.0) * (count - 1.0)) / count);
}
