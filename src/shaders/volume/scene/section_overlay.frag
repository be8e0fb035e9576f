#version 330 core

in vec3 tex_coord;
out vec4 frag_color;

#include "volume/volume.glsl"
#include "volume/overlay.glsl"

void main() {
  vec4 color = color_at(colorTex, normalised(texture(volumeTex, tex_coord).r));
  vec4 over = color_at(colorOverlayTex, normalised_overlay(texture(volumeOverlayTex, tex_coord).r));
  frag_color = vec4(mix(color, over, over.a).rgb, 1.0);
}
