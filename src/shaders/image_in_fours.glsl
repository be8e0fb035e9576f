uniform sampler2D displayTex;  // four samples that follow each other along depth in each texel
flat in vec2 texel_size;

float sample_at(ivec2 place) {
  int depth = min(place.x, samples.x - 1);
  vec4 four = texture(displayTex, (vec2(depth >> 2, place.y) + 0.5) * texel_size);
  vec2 two = (depth & 2) != 0 ? four.zw : four.xy;
  return (depth & 1) != 0 ? two.y : two.x;
}
