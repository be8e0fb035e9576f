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
  int last;  // index of the sample that ends the ray: the first at its end or beyond, or that of the last step
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

// The place of a sample. A sum of steps would carry their rounding along the ray.
vec3 place(Ray ray, int i) {
  return front + float(i) * ray.step;
}

// At a rim, above all of a target with several samples, a front may have no back: such a ray has no end.
Ray cast_ray() {
  vec2 screen_pos = 0.5 * clip_pos.xy / clip_pos.w + vec2(0.5, 0.5);
  vec4 back = texture(backTex, screen_pos);
  if (back.a == 0.0 || hidden(back)) discard;
  vec3 dir = back.rgb - front;
  float max_length = length(dir);
  Ray ray;
  ray.step = max_length > 0.0 && slices > 0 ? normalize(dir) * stepSize : vec3(0.0);
  // The last sample lies beyond the end by a part of a step. Beyond a surface there is often what it bounds, and
  // samples of it would show as stripes.
  if (on_surface(back)) max_length = max(max_length - stepSize, 0.0);
  // Up to one less than the quotient nobody has to measure.
  ray.last = clamp(int(max_length / stepSize) - 1, 0, slices);
  while (ray.last < slices && !(length(place(ray, ray.last) - front) >= max_length)) ++ray.last;
  return ray;
}

float sample_at(vec3 current) {
  return texture(volumeTex, current.yxz).r;
}
