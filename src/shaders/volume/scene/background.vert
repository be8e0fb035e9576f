#version 330 core

layout(location = 0) in vec2 vertex;
layout(location = 1) in vec4 vertexColor;
out vec4 color;

void main() {
  color = vertexColor;
  gl_Position = vec4(vertex, 0.0, 1.0);
}
