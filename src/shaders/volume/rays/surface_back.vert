#version 330 core

// Where rays end on the surface. The mesh has its depth along z, the volume along y.
layout(location = 0) in vec3 position;
uniform mat4 modelview;
uniform mat4 projection;
uniform vec4 clipPlane;
out vec3 position_in_volume;
out float clip_dist;
invariant gl_Position;  // fronts and ends meet in the same pixels

void main() {
  vec4 vertex = vec4(position.xzy, 1.0);
  position_in_volume = 0.5 * vertex.xyz + 0.5;
  clip_dist = dot(vertex, clipPlane);
  gl_Position = projection * modelview * vertex;
}
