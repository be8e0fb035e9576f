#version 330 core

// The mesh has its depth along z, the volume along y.
layout(location = 0) in vec3 position;
layout(location = 1) in vec3 meshNormal;

uniform mat4 modelview;
uniform mat4 projection;
uniform mat3 normal;  // of eye space
uniform float lowerDepth;
uniform float upperDepth;

out vec3 eyeNorm;
out vec3 toLight;
out vec3 toEye;
out vec3 reflected;
out float depth;  // 0 to 1

const vec3 light = vec3(10.0, 10.0, -5.0);  // eye space: it stays with the viewer

void main() {
  eyeNorm = normalize(normal * meshNormal.xzy);
  vec4 eyeVertex = modelview * vec4(position.xzy, 1.0);
  toLight = normalize(light - eyeVertex.xyz);
  toEye = normalize(-eyeVertex.xyz);
  reflected = reflect(-toLight, eyeNorm);
  depth = clamp(((position.z - lowerDepth) / (upperDepth - lowerDepth) + 1.0) / 2.0, 0.0, 1.0);
  gl_Position = projection * eyeVertex;
}
