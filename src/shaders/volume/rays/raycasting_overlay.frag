#version 330 core

#include "volume/volume.glsl"
#include "volume/overlay.glsl"
#include "volume/rays/ray.glsl"
#include "volume/rays/composite.glsl"

const float opaque = 0.99;  // more than without an overlay; its rays go on to the end anyway

// The overlay's maximum along the ray, normalised, is the weight it is blended with.
float overlay = -1e6;

void composite(vec3 current) {
  if (!(final.a > opaque)) {
    float value = sample_at(current);
    if (value > lowerValue) blend(color_at(colorTex, normalised(value)));
  }
  overlay = max(normalised_overlay(textureLod(volumeOverlayTex, current.yxz, 0.0).r), overlay);
}

void main() {
  if (clip_dist < 0.0) discard;
  Ray ray = cast_ray();
  vec3 current = front;
  int i = 0;
  for (; i < ray.sure; ++i) {
    composite(current);
    current += ray.step;
  }
  for (; i <= slices; ++i) {
    composite(current);
    if (at_end(ray, current)) break;
    current += ray.step;
  }
  vec4 over = vec4(color_at(colorOverlayTex, overlay).rgb, overlay);
  frag_color = mix(final, over, over.a);
}
