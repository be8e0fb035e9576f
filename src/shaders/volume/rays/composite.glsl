// Front-to-back compositing of the samples along a ray. Colours are times their opacity.
vec4 final = vec4(0.0);

// The colour map in steps so fine that the nearest one will do, in rows of 2048.
uniform sampler2D sampleColorTex;

vec4 sample_color(float value) {
  int last = textureSize(sampleColorTex, 0).y * 2048 - 1;
  int index = clamp(int(normalised(value) * float(last + 1)), 0, last);
  return texelFetch(sampleColorTex, ivec2(index & 2047, index >> 11), 0);
}

void blend(vec4 color) {
  final += (1.0 - final.a) * color;
}

// Undone of its opacity.
vec4 composite_color() {
  return vec4(final.a > 0.0 ? final.rgb / final.a : vec3(0.0), final.a);
}
