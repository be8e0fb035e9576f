#version 330 core

layout(location = 0) in vec4 vertex;
uniform mat4 modelview;
uniform mat4 projection;
uniform vec4 clipPlane;
out vec4 back;
out float clip_dist;
invariant gl_Position;  // fronts and backs meet in the same pixels

void main() {
  back = vec4(0.5 * vertex.xyz + 0.5, 1.0);
  clip_dist = dot(vertex, clipPlane);
  gl_Position = projection * modelview * vertex;
}
