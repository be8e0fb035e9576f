// Front-to-back compositing of the samples along a ray; the colour is kept undone of its opacity.
vec4 final = vec4(0.0);

void blend(vec4 color) {
  if (color.a > 0.0) {
    final = mix(vec4(color.rgb, 1.0) * color.a, vec4(final.rgb, 1.0), final.a);
    final.rgb /= final.a;
  }
}
