#version 330 core

#include "filter.glsl"

vec4 three_a_scans(int depth) { return texel(depth, -1) + texel(depth, 0) + texel(depth, 1); }

// Lifts samples below the mean of their 3 by 3 neighbourhood to that mean; bright structure stays as it is.
void main() {
  vec4 here = three_a_scans(0);
  vec4 before = four_before(here, three_a_scans(-1));
  vec4 after = four_after(here, three_a_scans(1));
  vec4 mean = (vec4(before.w, here.xyz) + here + vec4(here.yzw, after.x)) / 9.0;
  vec4 centre = texel(0, 0);
  result = with_last_repeated(mix(centre, mean, lessThan(centre, mean)));
}
