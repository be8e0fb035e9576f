// The view ray of a fragment, from where it enters the volume to where it leaves it, in texture space.
in vec4 clipPos;
in vec3 front;
in float clipDist;  // to the clip plane; negative on the side that is cut away
out vec4 fragColor;

uniform sampler2D backTex;
uniform int slices;  // steps along the box's diagonal
uniform float stepSize;

struct Ray {
  vec3 step;
  float maxLength;
  int sure;  // steps that surely end before maxLength: nobody has to measure them
};

Ray castRay() {
  vec2 screenPos = 0.5 * clipPos.xy / clipPos.w + vec2(0.5, 0.5);
  vec3 dir = texture(backTex, screenPos).rgb - front;
  Ray ray;
  ray.maxLength = length(dir);
  ray.step = normalize(dir) * stepSize;
  // One less than the quotient: far more than the rounding of all additions along the ray.
  ray.sure = clamp(int(ray.maxLength / stepSize) - 1, 0, max(slices, 0));
  return ray;
}

bool atEnd(Ray ray, vec3 current) {
  return length(current - front) >= ray.maxLength;
}

float sampleAt(vec3 current) {
  return texture(volumeTex, current.yxz).r;
}
