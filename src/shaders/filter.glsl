// A pass works on four samples at once, which follow each other along depth: a fetch costs the same for one. Along
// A-scans the texture repeats the samples at its edge; along depth that is done here. Lanes after the last sample
// repeat it.
noperspective in vec2 place;
flat in vec2 texel_size;
flat in int last_lane;
out vec4 result;

uniform sampler2D inputTexture;

vec4 texel(int depth, int a_scan) { return texture(inputTexture, place + texel_size * vec2(depth, a_scan)); }

bool is_first() { return place.x < texel_size.x; }
bool is_last() { return place.x > 1.0 - texel_size.x; }

// The four samples before and after these, given the texels beside them.
vec4 four_before(vec4 samples, vec4 neighbours) { return is_first() ? samples.xxxx : neighbours; }
vec4 four_after(vec4 samples, vec4 neighbours) { return is_last() ? samples.wwww : neighbours; }

vec4 with_last_repeated(vec4 samples) {
  bvec4 unused = greaterThan(ivec4(0, 1, 2, 3), ivec4(is_last() ? last_lane : 3));
  return mix(samples, vec4(samples[last_lane]), unused);
}
