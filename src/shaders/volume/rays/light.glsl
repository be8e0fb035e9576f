// A light at the eye, on both sides of what it shines on: where the volume changes from voxel to voxel. What is even
// keeps its colours, and so does faint noise, which would glitter.
#ifdef LIT
uniform vec3 lighting;  // ambient, diffuse, specular
uniform vec3 extent;    // of the box, in millimetres

const vec2 steepness_lit = vec2(0.1, 0.3);  // share of the coloring boundaries' distance: none of the light, all of it

vec3 to_viewer;  // in the volume's real proportions, as normals are
vec3 voxel;      // one voxel of the box

void prepare_light(Ray ray) {
  to_viewer = normalize(ray.step * extent);
  voxel = 1.0 / vec3(textureSize(volumeTex, 0).yxz);
}

float change_along(vec3 current, vec3 way) {
  return 0.5 * (sample_at(current + way) - sample_at(current - way)) / (upperValue - lowerValue);
}

vec4 shaded(vec4 color, vec3 current) {
  vec3 change = vec3(change_along(current, vec3(voxel.x, 0.0, 0.0)), change_along(current, vec3(0.0, voxel.y, 0.0)),
                     change_along(current, vec3(0.0, 0.0, voxel.z)));
  float steepness = length(change);
  if (!(steepness > steepness_lit.x && steepness < 1e6)) return color;  // or not a number
  float facing = abs(dot(normalize(change / (voxel * extent)), to_viewer));
  vec3 lit = color.rgb * (lighting.x + lighting.y * facing) + color.a * lighting.z * pow(facing, 32.0);
  color.rgb = mix(color.rgb, lit, smoothstep(steepness_lit.x, steepness_lit.y, steepness));
  return color;
}
#else
void prepare_light(Ray ray) {
}

vec4 shaded(vec4 color, vec3 current) {
  return color;
}
#endif
