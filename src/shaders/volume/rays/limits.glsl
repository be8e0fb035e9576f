#include "volume/rays/skip.glsl"

uniform float limits[4];  // ascending

// How many limits a maximum has reached: what does not exceed the last of them cannot raise it.
int limits_reached(float maximum) {
  int count = 0;
  for (int i = 0; i < 4; ++i) count += maximum >= limits[i] ? 1 : 0;
  return count;
}
