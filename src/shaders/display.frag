#version 330 core

#include "texel.glsl"
#include "colormap.glsl"

in vec2 texCoord;
out vec4 fragColor;

uniform sampler2D displayTex;
uniform sampler1D colorTex;
uniform float lowerValue;
uniform float upperValue;
uniform vec2 textureSize;  // A-scans, samples per A-scan; hides the built-in function from here on
uniform vec2 displaySize;  // pixels
uniform vec2 DPP;          // samples per pixel: across A-scans, along depth
uniform float gamma;       // set and not used: intensities stay as measured

void main() {
  ivec2 size = ivec2(textureSize).yx;
  ivec2 texel = texelAt(texCoord, displaySize, size);
  ivec2 box = ivec2(DPP);
  float sum = 0.0;
  for (int x = 0; x < box.x; ++x) {
    for (int y = 0; y < box.y; ++y) {
      // The last box may reach over the edge; the edge sample stands for what is missing there.
      sum += texelFetch(displayTex, min(texel + ivec2(y, x), size - 1), 0).r;
    }
  }
  float value = sum / float(box.x * box.y);
  fragColor = colorOf(colorTex, (value - lowerValue) / (upperValue - lowerValue));
}
