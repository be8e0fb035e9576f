#version 330 core

// Where the view ray meets the surface, in texture space.
in vec3 position_in_volume;
in float clip_dist;
out vec4 frag_color;

void main() {
  if (clip_dist < 0.0) discard;
  frag_color = vec4(position_in_volume, 1.0);
}
