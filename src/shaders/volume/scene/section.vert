#version 330 core

layout(location = 0) in vec3 vertex;
uniform mat4 modelview;
uniform mat4 projection;
uniform bool flip;
out vec3 texCoord;

void main() {
  texCoord = 0.5 * vertex.yxz + 0.5;
  if (flip) texCoord.x = 1.0 - texCoord.x;
  gl_Position = projection * modelview * vec4(vertex, 1.0);
}
