flat in vec2 range;
out vec4 frag_color;

uniform sampler1D colorTex;
uniform vec2 DPP;     // samples per pixel: along depth, across A-scans
uniform float gamma;  // set and not used: intensities stay as measured

void main() {
  ivec2 first = sample_below(samples);
  ivec2 box = ivec2(DPP);
  int count = box.x * box.y;
  ivec2 offset = ivec2(0);
  float sum = 0.0;
  for (int i = 0; i < count; ++i) {  // one loop, which costs half of two nested ones
    // The last box may reach over the edge; the edge sample stands for what is missing there.
    sum += sample_at(first + offset);
    ++offset.x;
    if (offset.x == box.x) offset = ivec2(0, offset.y + 1);
  }
  float value = sum / float(count);
  frag_color = color_at(colorTex, (value - range.x) / range.y);
}
