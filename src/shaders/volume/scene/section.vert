#version 330 core

layout(location = 0) in vec3 vertex;
uniform mat4 modelview;
uniform mat4 projection;
uniform bool flip;
out vec3 tex_coord;

void main() {
  tex_coord = 0.5 * vertex.yxz + 0.5;
  if (flip) tex_coord.x = 1.0 - tex_coord.x;
  gl_Position = projection * modelview * vec4(vertex, 1.0);
}
