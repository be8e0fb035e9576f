#version 330 core

layout(location = 0) in vec2 vertex;
layout(location = 1) in vec4 vertex_color;
out vec4 color;

void main() {
  color = vertex_color;
  gl_Position = vec4(vertex, 0.0, 1.0);
}
