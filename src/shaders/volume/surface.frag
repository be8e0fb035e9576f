#version 330 core

uniform sampler1D colorTex;
out vec4 fragColor;

void main() {
  fragColor = vec4(texture(colorTex, 0.0).rgb, 1.0);
}
