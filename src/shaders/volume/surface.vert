#version 330 core

layout(location = 0) in vec3 position;
layout(location = 1) in vec3 normalVector;
uniform mat4 modelview;
uniform mat4 projection;

void main() {
  gl_Position = projection * modelview * vec4(position.xzy, 1.0);
}
