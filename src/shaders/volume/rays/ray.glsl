// The view ray of a fragment, from where it enters the volume to where it leaves it, in texture space.
in vec4 clip_pos;
in vec3 front;
in float clip_dist;  // to the clip plane; negative on the side that is cut away
out vec4 frag_color;

uniform sampler2D backTex;
uniform vec4 eye;    // texture space, homogeneous: w = 0 is the direction to the viewer
uniform int slices;  // steps along the box's diagonal
uniform float stepSize;

struct Ray {
  vec3 step;
  float max_length;
  int sure;  // steps that surely end before max_length: nobody has to measure them
};

bool on_surface(vec4 back) {
  return back.a > 1.5;
}

// A surface hides the ray where it lies before the volume. One that lies on the side where the ray enters ends
// it after one sample, wherever rounding puts the two.
bool hidden(vec4 back) {
  const float rounding = 1e-4;
  vec3 view = front * eye.w - eye.xyz;
  return on_surface(back) && dot(back.rgb - front, view) < -rounding * length(view);
}

// At a rim, above all of a target with several samples, a front may have no back: such a ray has no end.
Ray cast_ray() {
  vec2 screen_pos = 0.5 * clip_pos.xy / clip_pos.w + vec2(0.5, 0.5);
  vec4 back = texture(backTex, screen_pos);
  if (back.a == 0.0 || hidden(back)) discard;
  vec3 dir = back.rgb - front;
  Ray ray;
  ray.max_length = length(dir);
  // The last sample lies beyond the end by a part of a step. Beyond a surface there is often what it bounds, and
  // samples of it would show as stripes.
  if (on_surface(back)) ray.max_length = max(ray.max_length - stepSize, 0.0);
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
