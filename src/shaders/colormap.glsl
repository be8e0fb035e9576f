// A colour map at a value from 0 to 1, by the texture unit's rule: entry i of n stands at (i + 0.5) / n,
// between two entries the colour is linear, beyond the outermost it stays. The weights keep all their bits;
// the unit's eight show in maps of few colours and in blended overlays, and, summed along a ray, in any
// map.
vec4 color_at(sampler1D colors, float value) {
  int last = textureSize(colors, 0) - 1;
  float position = clamp(value, 0.0, 1.0) * float(last + 1) - 0.5;
  float below = floor(position);
  int index = int(below);
  return mix(texelFetch(colors, max(index, 0), 0), texelFetch(colors, min(index + 1, last), 0), position - below);
}
