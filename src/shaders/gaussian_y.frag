#version 330 core

#include "filter.glsl"

// Gaussian smoothing over five A-scans.
void main() {
  result = 0.1 * texel(0, -2);
  result += 0.2 * texel(0, -1);
  result += 0.4 * texel(0, 0);
  result += 0.2 * texel(0, 1);
  result += 0.1 * texel(0, 2);
}
