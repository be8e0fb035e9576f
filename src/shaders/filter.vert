#version 330 core

layout(location = 0) in vec2 vertex;
out vec2 tex_coord;

void main() {
  tex_coord = 0.5 + 0.5 * vertex;
  gl_Position = vec4(vertex, 1.0, 1.0);
}
