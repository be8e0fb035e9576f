#version 330 core

in vec2 tex_coord;
out vec4 frag_color;

uniform sampler2D displayTex;
uniform sampler2D overlayTex;
uniform sampler1D colorTex;
uniform float lowerValue;
uniform float upperValue;
uniform float threshold;
uniform vec2 displaySize;  // pixels

#include "texel.glsl"
#include "colormap.glsl"

// Both images are looked up at their nearest sample.
float sample_at(sampler2D image) {
  return texelFetch(image, texel_at(tex_coord, displaySize, textureSize(image, 0)), 0).r;
}

void main() {
  if (!(sample_at(displayTex) >= threshold)) discard;
  float value = sample_at(overlayTex);
  frag_color = color_at(colorTex, (value - lowerValue) / (upperValue - lowerValue));
}
