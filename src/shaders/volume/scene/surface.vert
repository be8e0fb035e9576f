#version 330 core

// The mesh has its depth along z, the volume along y.
layout(location = 0) in vec3 position;
layout(location = 1) in vec3 mesh_normal;

uniform mat4 modelview;
uniform mat4 projection;
uniform vec4 clipPlane;
uniform mat3 normal;  // of eye space
uniform float lower_depth;
uniform float upper_depth;

out vec3 eye_norm;
out vec3 to_light;
out vec3 to_eye;
out vec3 reflected;
out float depth;      // 0 to 1
out float clip_dist;  // to the clip plane; negative on the side that is cut away

const vec3 light = vec3(10.0, 10.0, -5.0);  // eye space: it stays with the viewer

void main() {
  eye_norm = normalize(normal * mesh_normal.xzy);
  vec4 vertex = vec4(position.xzy, 1.0);
  vec4 eye_vertex = modelview * vertex;
  to_light = normalize(light - eye_vertex.xyz);
  to_eye = normalize(-eye_vertex.xyz);
  reflected = reflect(-to_light, eye_norm);
  depth = clamp(((position.z - lower_depth) / (upper_depth - lower_depth) + 1.0) / 2.0, 0.0, 1.0);
  clip_dist = dot(vertex, clipPlane);
  gl_Position = projection * eye_vertex;
}
