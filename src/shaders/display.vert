#version 330 core

// The picture stands transposed in the texture: depth runs along its first axis (s), A-scans along its second (t).
layout(location = 0) in vec2 vertex;

uniform bool flip;
uniform vec2 displaySize;  // of the whole picture in pixels
uniform vec4 part;         // factors and summands that lead to the part of it that is drawn
uniform vec2 textureSize;  // samples along depth, A-scans
uniform vec2 texelCount;   // of the texture that holds them
uniform float lowerValue;
uniform float upperValue;

// All along the texture's axes. What is the same for every pixel is computed here, once per corner: a driver that
// draws with the processor reads a uniform more slowly than an input.
noperspective out vec2 position;  // pixels
flat out ivec2 pixels;
flat out ivec2 samples;
flat out vec2 texel_size;  // of the texture's coordinates
flat out vec2 range;       // first value, difference to the last

void main() {
  vec2 place = flip ? vec2(0.5 + 0.5 * vertex.t, 0.5 + 0.5 * vertex.s)
                    : vec2(0.5 - 0.5 * vertex.t, 0.5 + 0.5 * vertex.s);
  position = place * displaySize.yx;
  pixels = ivec2(displaySize.yx);
  samples = ivec2(textureSize);
  texel_size = 1.0 / texelCount;
  range = vec2(lowerValue, upperValue - lowerValue);
  gl_Position = vec4(vertex * part.xy + part.zw, 1.0, 1.0);
}
