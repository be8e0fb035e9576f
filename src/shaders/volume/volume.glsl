// A volume, its coloring boundaries and its colour map. The texture's first axis is depth.
uniform sampler3D volumeTex;
uniform sampler1D colorTex;
uniform float lowerValue;
uniform float upperValue;

float normalised(float value) {
  return (value - lowerValue) / (upperValue - lowerValue);
}

// A colour map between its entries' centres, as the texture unit does it, but with all bits of the weight: the unit's
// eight show in maps of few colours, and summed along a ray in any map.
vec4 color_at(sampler1D colors, float value) {
  int last = textureSize(colors, 0) - 1;
  float position = clamp(value, 0.0, 1.0) * float(last + 1) - 0.5;
  float below = floor(position);
  int index = int(below);
  return mix(texelFetch(colors, max(index, 0), 0), texelFetch(colors, min(index + 1, last), 0), position - below);
}
