#version 330 core

out vec4 fragColor;

void main() {
  fragColor = vec4(0.0);
}
