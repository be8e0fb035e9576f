#version 330 core

in vec2 tex_coord;
out vec4 frag_color;

uniform sampler2D text_texture;  // white glyphs on black
uniform vec3 text_color;

void main() { frag_color = vec4(text_color, texture(text_texture, tex_coord).r); }
