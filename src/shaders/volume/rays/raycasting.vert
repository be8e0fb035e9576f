#version 330 core

layout(location = 0) in vec4 vertex;
uniform mat4 modelview;
uniform mat4 projection;
uniform vec4 clipPlane;
out vec4 clip_pos;
out vec3 front;
out float clip_dist;
invariant gl_Position;  // fronts and ends meet in the same pixels

void main() {
  clip_pos = projection * modelview * vertex;
  front = 0.5 * vertex.xyz + 0.5;
  clip_dist = dot(vertex, clipPlane);
  gl_Position = clip_pos;
}
