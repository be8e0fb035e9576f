#version 330 core

in vec3 tex_coord;
#ifdef PICKING
#include "volume/pick.glsl"
#else
out vec4 frag_color;
#endif

#include "volume/volume.glsl"

void main() {
#ifdef PICKING
  pick(tex_coord.yxz, texture(volumeTex, tex_coord).r, 1.0);
#else
  frag_color = vec4(color_at(colorTex, normalised(texture(volumeTex, tex_coord).r)).rgb, 1.0);
#endif
}
