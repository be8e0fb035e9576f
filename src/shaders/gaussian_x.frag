#version 330 core

#include "filter.glsl"

// Gaussian smoothing over five samples along depth.
void main() {
  vec4 here = texel(0, 0);
  vec4 before = four_before(here, texel(-1, 0));
  vec4 after = four_after(here, texel(1, 0));
  vec4 sum = 0.1 * vec4(before.zw, here.xy);
  sum += 0.2 * vec4(before.w, here.xyz);
  sum += 0.4 * here;
  sum += 0.2 * vec4(here.yzw, after.x);
  sum += 0.1 * vec4(here.zw, after.xy);
  result = with_last_repeated(sum);
}
