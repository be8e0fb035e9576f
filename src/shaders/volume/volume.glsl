#include "colormap.glsl"

// A volume, its coloring boundaries and its colour map. The texture's first axis is depth.
uniform sampler3D volumeTex;
uniform sampler1D colorTex;
uniform float lowerValue;
uniform float upperValue;

float normalised(float value) {
  return (value - lowerValue) / (upperValue - lowerValue);
}
