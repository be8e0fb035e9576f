#version 330 core

in vec2 texel;
out vec4 frag_color;

uniform sampler2D text_texture;  // white glyphs on black
uniform vec3 text_color;

void main() { frag_color = vec4(text_color, texelFetch(text_texture, ivec2(texel), 0).r); }
