#version 330 core

// Where the view ray leaves the volume, in texture space.
in vec4 back;
in float clip_dist;
out vec4 frag_color;

void main() {
  if (clip_dist < 0.0) discard;
  frag_color = back;
}
