#version 330 core

in vec3 eye_norm;
in vec3 to_light;
in vec3 to_eye;
in vec3 reflected;
in float depth;
in float clip_dist;
out vec4 frag_color;

uniform sampler1D colorTex;

#include "colormap.glsl"

const float ambient_part = 0.25;
const float diffuse_part = 0.55;
const float specular_part = 0.9;
const float shininess = 3.0;

void main() {
  if (clip_dist < 0.0) discard;
  vec3 base = color_at(colorTex, 1.0 - depth).rgb;
  vec3 ambient = ambient_part * base;
  // The normals point to greater depth, away from the side that is the front.
  float diffuse = max(dot(to_light, gl_FrontFacing ? -eye_norm : eye_norm), 0.0);
  vec3 specular = vec3(0.0);
  if (diffuse > 0.0) specular = vec3(specular_part * pow(max(dot(reflected, to_eye), 0.0), shininess));
  frag_color = vec4(ambient + diffuse_part * base * diffuse + specular, 1.0);
}
