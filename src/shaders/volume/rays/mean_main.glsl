#ifdef PICKING
float shown_value(float maximum, float sum, Ray ray) {
  return sum / float(max(ray.last, 1));
}

#include "volume/rays/pick_brightest.glsl"
#else
// The first point counts twice in the sum, and the last point not at all in the divisor.
void main() {
  if (clip_dist < 0.0) discard;
  Ray ray = cast_ray();
  float sum = sample_at(ray.start);
  for (int i = 0; i <= min(ray.last, slices - 1); ++i) sum += sample_at(place(ray, i));
  frag_color = color_at(colorTex, normalised(sum / float(max(ray.last, 1))));
}
#endif
