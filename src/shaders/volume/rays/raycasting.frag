#version 330 core

#include "volume/volume.glsl"
#include "volume/rays/ray.glsl"
#include "volume/rays/composite.glsl"

const float opaque = 0.9;  // enough for the eye; what lies behind is not sampled

void composite(vec3 current) {
  float value = sample_at(current);
  if (value > lowerValue) blend(shaded(sample_color(value), current));
}

#include "volume/rays/composite_main.glsl"
