// The front point is sampled twice, before the loop and by its first turn; the second time changes no maximum and is
// left out.
void main() {
  if (clip_dist < 0.0) discard;
  Ray ray = cast_ray();
  vec3 current = front;
  float maximum = sample_at(current);
  int i = 1;
  if (i <= ray.sure) {
    current += ray.step;
    ++i;
  }
  while (i <= ray.sure && !(maximum > upperValue)) {
    maximum = max(maximum, sample_at(current));
    current += ray.step;
    ++i;
  }
  if (!(maximum > upperValue)) {
    for (; i <= slices; ++i) {
      maximum = max(maximum, sample_at(current));
      if (maximum > upperValue || at_end(ray, current)) break;
      current += ray.step;
    }
  }
  frag_color = color_at(colorTex, normalised(maximum));
}
