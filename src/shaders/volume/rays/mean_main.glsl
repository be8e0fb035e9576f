// The front point counts twice in the sum, and the last point not at all in the divisor.
void main() {
  if (clip_dist < 0.0) discard;
  Ray ray = cast_ray();
  vec3 current = front;
  float mean = sample_at(current);
  int i = 1;
  for (; i <= ray.sure; ++i) {
    mean += sample_at(current);
    current += ray.step;
  }
  int counter = ray.sure;
  for (; i <= slices; ++i) {
    mean += sample_at(current);
    if (at_end(ray, current)) break;
    current += ray.step;
    ++counter;
  }
  mean /= float(max(counter, 1));
  frag_color = color_at(colorTex, normalised(mean));
}
