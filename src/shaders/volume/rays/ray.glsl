// The view ray of a fragment, from where it enters the volume to where it leaves it, in texture space.
in vec4 clip_pos;
in vec3 front;
in float clip_dist;  // to the clip plane; negative on the side that is cut away
out vec4 frag_color;

uniform sampler2D backTex;
uniform int slices;  // steps along the box's diagonal
uniform float stepSize;

struct Ray {
  vec3 step;
  float max_length;
  int sure;  // steps that surely end before max_length: nobody has to measure them
};

Ray cast_ray() {
  vec2 screen_pos = 0.5 * clip_pos.xy / clip_pos.w + vec2(0.5, 0.5);
  vec3 dir = texture(backTex, screen_pos).rgb - front;
  Ray ray;
  ray.max_length = length(dir);
  ray.step = normalize(dir) * stepSize;
  // One less than the quotient: far more than the rounding of all additions along the ray.
  ray.sure = clamp(int(ray.max_length / stepSize) - 1, 0, max(slices, 0));
  return ray;
}

bool at_end(Ray ray, vec3 current) {
  return length(current - front) >= ray.max_length;
}

float sample_at(vec3 current) {
  return texture(volumeTex, current.yxz).r;
}
