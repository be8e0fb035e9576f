#version 330 core

#include "volume/volume.glsl"
#include "volume/overlay.glsl"
#include "volume/rays/ray.glsl"
#include "volume/rays/composite.glsl"

const float opaque = 0.99;  // more than without an overlay; its rays go on to the end anyway

// The overlay's maximum along the ray, normalised, is the weight it is blended with.
float overlay = -1e6;
float overlay_value = -1e38;  // as it is stored

void composite(vec3 current) {
  if (!(final.a > opaque)) {
    float intensity = sample_at(current);
    if (intensity > lowerValue) blend(shaded(sample_color(intensity), current));
  }
  float value = textureLod(volumeOverlayTex, current.yxz, 0.0).r;
  overlay_value = max(value, overlay_value);
  overlay = max(normalised_overlay(value), overlay);
}

#ifdef PICKING
#include "volume/rays/pick_composite.glsl"

// Whichever weighs more: the composite, or the overlay where it has its maximum.
void main() {
  if (clip_dist < 0.0) discard;
  Ray ray = cast_ray();
  prepare_samples(ray);
  int brightest = 0;
  for (int i = 0; i <= ray.last; ++i) {
    float before = overlay_value;
    composite(place(ray, i));
    if (overlay_value > before) brightest = i;
  }
  float all = final.a;
  float shown = clamp(mix(all, overlay, overlay), 0.0, 1.0);
  float maximum = overlay_value;
  if (overlay > 0.5 || all == 0.0) {
    pick(place(ray, brightest), maximum, shown);
  } else {
    pick_half(ray, all, shown);
  }
}
#else
#include "volume/rays/limits.glsl"

// The loop of the plain composites, but to the end of the ray: the overlay's maximum needs all of it. Before the
// maximum has reached a limit everything counts.
void main() {
  if (clip_dist < 0.0) discard;
  Ray ray = cast_ray();
  prepare_samples(ray);
  Walk walk = walk_of(ray);
  int i = 0;
  while (i <= ray.last) {
    composite(place(ray, i));
    if (i < ray.last) composite(place(ray, i + 1));
    i += 2;
    int limit = limits_reached(overlay_value);
    if (limit > 0) i += empty_samples(walk, i, limit - 1);
  }
  vec4 over = vec4(color_at(colorOverlayTex, overlay).rgb, overlay);
  frag_color = mix(composite_color(), over, over.a);
}
#endif
