#version 330 core

in vec3 tex_coord;
out vec4 frag_color;

#include "volume/volume.glsl"

void main() {
  frag_color = vec4(color_at(colorTex, normalised(texture(volumeTex, tex_coord).r)).rgb, 1.0);
}
