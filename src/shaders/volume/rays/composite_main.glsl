#ifdef PICKING
#include "volume/rays/pick_composite.glsl"

void main() {
  if (clip_dist < 0.0) discard;
  Ray ray = cast_ray();
  prepare_samples(ray);
  float all = opacity_along(ray);
  pick_half(ray, all, all);
}
#else
#include "volume/rays/skip.glsl"

// One loop with one way out, so that pixels which go on together do not wait for each other: two samples, then a look
// ahead, then a jump. What is empty costs nothing but time.
void main() {
  if (clip_dist < 0.0) discard;
  Ray ray = cast_ray();
  prepare_samples(ray);
  Walk walk = walk_of(ray);
  int i = empty_samples(walk, 0, 0);
  while (i <= ray.last && !(final.a > opaque)) {
    composite(place(ray, i));
    if (i < ray.last && !(final.a > opaque)) composite(place(ray, i + 1));
    i += 2;
    i += empty_samples(walk, i, 0);
  }
  vec4 color = composite_color();
  frag_color = final.a > opaque ? vec4(color.rgb, 1.0) : color;
}
#endif
