#version 330 core

#include "volume/volume.glsl"
#include "volume/rays/ray.glsl"
#include "volume/rays/composite.glsl"

uniform sampler3D secondaryTex;  // slice index along the first axis, one lateral image per slice
uniform sampler1D colorTex2;
uniform float secondarySlice;
uniform float lowerValue2;
uniform float upperValue2;

const float opaque = 0.9;

void composite(vec3 current) {
  float value = sample_at(current);
  if (!(value > lowerValue)) return;
  vec4 color = sample_color(value);
  float secondary = textureLod(secondaryTex, vec3(secondarySlice, current.x, current.z), 0.0).r;
  float surface = clamp((secondary - lowerValue2) / (upperValue2 - lowerValue2), 0.0, 1.0);
  color.rgb *= (1.0 + surface) * color_at(colorTex2, surface).rgb;
  blend(shaded(color, current));
}

#include "volume/rays/composite_main.glsl"
