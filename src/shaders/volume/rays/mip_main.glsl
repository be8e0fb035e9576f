#ifdef PICKING
float shown_value(float maximum, float sum, Ray ray) {
  return maximum;
}

#include "volume/rays/pick_brightest.glsl"
#else
#include "volume/rays/limits.glsl"

// One loop with one way out, so that pixels which go on together do not wait for each other: three samples, then a
// look ahead, then a jump over what holds no greater value. Below
// the first limit all values have one colour.
void main() {
  if (clip_dist < 0.0) discard;
  Ray ray = cast_ray();
  Walk walk = walk_of(ray);
  float maximum = sample_at(ray.start);
  int last = min(ray.last, slices - 1);
  int i = 1;
  while (i <= last && !(maximum > upperValue)) {
    maximum = max(maximum, sample_at(place(ray, i)));
    if (!(maximum > upperValue)) maximum = max(maximum, sample_at(place(ray, min(i + 1, last))));
    if (!(maximum > upperValue)) maximum = max(maximum, sample_at(place(ray, min(i + 2, last))));
    i += 3;
    i += empty_samples(walk, i, max(limits_reached(maximum) - 1, 0));
  }
  frag_color = color_at(colorTex, normalised(maximum));
}
#endif
