// The view ray of a fragment, from where it enters the volume to where it leaves it or meets the surface, in texture
// space.
in vec4 clip_pos;
in vec3 front;
in float clip_dist;  // to the clip plane; negative on the side that is cut away
#ifdef PICKING
#include "volume/pick.glsl"
#else
out vec4 frag_color;
#endif

uniform ivec2 firstPixel;  // of the picture, that lies at the target's lower left corner
uniform vec4 eye;        // homogeneous: w = 0 is the direction to the viewer
uniform float boxEnd;    // of the filled part along z; along the other axes it ends at 1
uniform vec4 clipPlane;  // model coordinates; zero where nothing is cut
uniform bool endsOnSurface;
uniform sampler2D backTex;  // where the surface is, and 1; 0 where it is not
uniform int slices;         // steps along the box's diagonal
uniform float stepSize;

struct Ray {
  vec3 start;  // the first sample
  vec3 step;
  int last;  // index of the sample that ends the ray: the first at its end or beyond, or that of the last step
};

// The way along a direction to the far side of the box, or to the clip plane where that comes first.
float way_out(vec3 direction) {
  vec3 far = vec3(1.0, 1.0, boxEnd) * vec3(greaterThan(direction, vec3(0.0)));
  vec3 ways = mix((far - front) / direction, vec3(10.0), equal(direction, vec3(0.0)));
  float way = min(min(ways.x, ways.y), ways.z);
  float approach = -2.0 * dot(direction, clipPlane.xyz);
  return approach > 0.0 ? min(way, clip_dist / approach) : way;
}

// The place of a sample. A sum of steps would carry their rounding along the ray.
vec3 place(Ray ray, int i) {
  return ray.start + float(i) * ray.step;
}

bool is_before(vec3 current, float end) {
  return length(current - front) < end;
}

// A surface hides the ray where it lies before the volume. One that lies on the side where the ray enters ends
// it after one sample, wherever rounding puts the two. The last sample lies beyond the end by a part of a step, and
// beyond a surface there is often what it bounds: samples of it would show as stripes.
float way_to_surface(vec3 direction, float otherwise) {
  const float rounding = 1e-4;
  vec4 surface = texture(backTex, 0.5 * clip_pos.xy / clip_pos.w + vec2(0.5, 0.5));
  if (surface.a == 0.0) return otherwise;
  vec3 way = surface.xyz - front;
  if (dot(way, direction) < -rounding) discard;
  return min(otherwise, max(length(way) - stepSize, 0.0));
}

// From 0 to 1, of a step, and always the same for a pixel. The multiples of two irrational numbers, whole ones modulo
// 2^32, so that every driver has the same: neighbours differ much, and any few pixels spread evenly.
float start_offset() {
#ifdef JITTERED
  uvec2 pixel = uvec2(ivec2(gl_FragCoord.xy) + firstPixel);
  return float((pixel.x * 3242174889u + pixel.y * 2447445414u) >> 8u) / 16777216.0;
#else
  return 0.0;
#endif
}

Ray cast_ray() {
  vec3 direction = normalize(front * eye.w - eye.xyz);
  float way = way_out(direction);
  if (way < 0.0) discard;  // rounding at a rim: there is nothing behind
  if (endsOnSurface) way = way_to_surface(direction, way);
  Ray ray;
  ray.step = slices > 0 ? direction * stepSize : vec3(0.0);
  ray.start = front + min(start_offset(), way / stepSize) * ray.step;
  // The quotient may be off by its rounding.
  ray.last = clamp(int(way / stepSize), 0, slices);
  ray.last += is_before(place(ray, ray.last), way) ? 1 : 0;
  ray.last += is_before(place(ray, ray.last), way) ? 1 : 0;
  ray.last = min(ray.last, slices);
  return ray;
}

float sample_at(vec3 current) {
  return textureLod(volumeTex, current.yxz, 0.0).r;
}
