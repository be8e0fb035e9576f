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
  int last;  // index of the sample that ends the ray: the first at its end or beyond, or that of the last step
};

// The place of a sample. A sum of steps would carry their rounding along the ray.
vec3 place(Ray ray, int i) {
  return front + float(i) * ray.step;
}

Ray cast_ray() {
  vec2 screen_pos = 0.5 * clip_pos.xy / clip_pos.w + vec2(0.5, 0.5);
  vec3 dir = texture(backTex, screen_pos).rgb - front;
  float max_length = length(dir);
  Ray ray;
  ray.step = max_length > 0.0 && slices > 0 ? normalize(dir) * stepSize : vec3(0.0);
  // Up to one less than the quotient nobody has to measure.
  ray.last = clamp(int(max_length / stepSize) - 1, 0, slices);
  while (ray.last < slices && !(length(place(ray, ray.last) - front) >= max_length)) ++ray.last;
  return ray;
}

float sample_at(vec3 current) {
  return texture(volumeTex, current.yxz).r;
}
