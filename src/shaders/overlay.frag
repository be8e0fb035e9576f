#version 330 core

in vec2 texCoord;
out vec4 fragColor;

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
float sampleAt(sampler2D image) {
  return texelFetch(image, texelAt(texCoord, displaySize, textureSize(image, 0)), 0).r;
}

void main() {
  if (!(sampleAt(displayTex) >= threshold)) discard;
  float value = sampleAt(overlayTex);
  fragColor = colorOf(colorTex, (value - lowerValue) / (upperValue - lowerValue));
}
