#version 330 core

in vec2 texCoord;
out vec4 fragColor;

uniform sampler2D textTexture;  // white glyphs on black
uniform vec3 textColor;

void main() { fragColor = vec4(textColor, texture(textTexture, texCoord).r); }
