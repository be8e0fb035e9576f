#version 330 core

in vec3 texCoord;
out vec4 fragColor;

#include "volume/volume.glsl"
#include "volume/overlay.glsl"

void main() {
  vec4 color = colorAt(colorTex, normalised(texture(volumeTex, texCoord).r));
  vec4 over = colorAt(colorOverlayTex, normalisedOverlay(texture(volumeOverlayTex, texCoord).r));
  fragColor = mix(color, over, over.a);
}
