#version 330 core

// Where rays end on the surface. The mesh has its depth along z, the volume along y.
layout(location = 0) in vec3 position;
uniform mat4 modelview;
uniform mat4 projection;
uniform vec4 clipPlane;
out vec4 back;  // with 2 for "on the surface"
out float clip_dist;
invariant gl_Position;  // fronts and backs meet in the same pixels

void main() {
  vec4 vertex = vec4(position.xzy, 1.0);
  back = vec4(0.5 * vertex.xyz + 0.5, 2.0);
  clip_dist = dot(vertex, clipPlane);
  gl_Position = projection * modelview * vertex;
}
