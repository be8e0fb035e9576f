#version 330 core

// Where the view ray leaves the volume, in texture space.
in vec4 back;  // with 1 for "on the box or its cut", 2 for "on the surface"
in float clip_dist;
out vec4 frag_color;

void main() {
  if (clip_dist < 0.0) discard;
  frag_color = back;
}
