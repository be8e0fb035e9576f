#version 330 core

in vec3 texCoord;
out vec4 fragColor;

#include "volume/volume.glsl"

void main() {
  fragColor = colorAt(colorTex, normalised(texture(volumeTex, texCoord).r));
}
