#version 330 core

in vec3 tex_coord;
#ifdef PICKING
#include "volume/pick.glsl"
#else
out vec4 frag_color;
#endif

#include "volume/volume.glsl"
#include "volume/overlay.glsl"

void main() {
  float value = texture(volumeTex, tex_coord).r;
  float overlay = texture(volumeOverlayTex, tex_coord).r;
  vec4 over = color_at(colorOverlayTex, normalised_overlay(overlay));
#ifdef PICKING
  pick(tex_coord.yxz, over.a > 0.5 ? overlay : value, 1.0);
#else
  vec4 color = color_at(colorTex, normalised(value));
  frag_color = vec4(mix(color, over, over.a).rgb, 1.0);
#endif
}
