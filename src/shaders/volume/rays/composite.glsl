// Front-to-back compositing of the samples along a ray. Colours are times their opacity.
vec4 final = vec4(0.0);

// The colour map in steps so fine that the nearest one will do, in rows of 2048: colours times their opacity and the
// opacity of a step. With OPACITY_LENGTH they are the colours themselves and the logarithm (of 2) of what a length of
// tissue lets through.
uniform sampler2D sampleColorTex;

#ifdef OPACITY_LENGTH
uniform vec3 lengthScale;  // from the box to those lengths
float step_length = 1.0;   // of the ray
#endif

vec4 sample_color(float value) {
  int last = textureSize(sampleColorTex, 0).y * 2048 - 1;
  int index = clamp(int(normalised(value) * float(last + 1)), 0, last);
  vec4 color = texelFetch(sampleColorTex, ivec2(index & 2047, index >> 11), 0);
#ifdef OPACITY_LENGTH
  color.a = 1.0 - exp2(color.a * step_length);
  color.rgb *= color.a;
#endif
  return color;
}

#include "volume/rays/light.glsl"

void prepare_samples(Ray ray) {
#ifdef OPACITY_LENGTH
  step_length = min(length(ray.step * lengthScale), 1e6);
#endif
  prepare_light(ray);
}

void blend(vec4 color) {
  final += (1.0 - final.a) * color;
}

// Undone of its opacity.
vec4 composite_color() {
  return vec4(final.a > 0.0 ? final.rgb / final.a : vec3(0.0), final.a);
}
