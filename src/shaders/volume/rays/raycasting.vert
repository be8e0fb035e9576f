#version 330 core

layout(location = 0) in vec4 vertex;
uniform mat4 modelview;
uniform mat4 projection;
uniform vec4 clipPlane;
out vec4 clipPos;
out vec3 front;
out float clipDist;

void main() {
  clipPos = projection * modelview * vertex;
  front = 0.5 * vertex.xyz + 0.5;
  clipDist = dot(vertex, clipPlane);
  gl_Position = clipPos;
}
