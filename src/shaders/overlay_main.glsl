flat in vec2 range;
out vec4 frag_color;

uniform sampler2D overlayTex;
uniform sampler1D colorTex;
uniform float threshold;

// Both images are looked up at their nearest sample.
void main() {
  if (!(sample_at(sample_below(samples)) >= threshold)) discard;
  ivec2 size = textureSize(overlayTex, 0);
  float value = texture(overlayTex, (vec2(sample_below(size)) + 0.5) / vec2(size)).r;
  frag_color = color_at(colorTex, (value - range.x) / range.y);
}
