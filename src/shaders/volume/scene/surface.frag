#version 330 core

in vec3 eyeNorm;
in vec3 toLight;
in vec3 toEye;
in vec3 reflected;
in float depth;
out vec4 fragColor;

uniform sampler1D colorTex;

const float ambientPart = 0.25;
const float diffusePart = 0.55;
const float specularPart = 0.9;
const float shininess = 3.0;

void main() {
  vec3 base = texture(colorTex, 1.0 - depth).rgb;
  vec3 ambient = ambientPart * base;
  // The normals point to greater depth, away from the side that is the front.
  float diffuse = max(dot(toLight, gl_FrontFacing ? -eyeNorm : eyeNorm), 0.0);
  vec3 specular = vec3(0.0);
  if (diffuse > 0.0) specular = vec3(specularPart * pow(max(dot(reflected, toEye), 0.0), shininess));
  fragColor = vec4(ambient + diffusePart * base * diffuse + specular, 1.0);
}
