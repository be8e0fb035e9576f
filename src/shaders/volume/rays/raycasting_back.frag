#version 330 core

// Where the view ray leaves the volume, in texture space.
in vec4 back;
in float clipDist;
out vec4 fragColor;

void main() {
  if (clipDist < 0.0) discard;
  fragColor = back;
}
