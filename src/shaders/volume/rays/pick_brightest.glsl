// The brightest of the samples that a maximum or a mean looks at, the first of several, with the opacity of the pixel.
void main() {
  if (clip_dist < 0.0) discard;
  Ray ray = cast_ray();
  int last = min(ray.last, slices - 1);
  int brightest = 0;
  float maximum = sample_at(ray.start);
  float sum = maximum;
  for (int i = 0; i <= last; ++i) {
    float value = sample_at(place(ray, i));
    sum += value;
    if (!(value > maximum || isnan(maximum))) continue;
    maximum = value;
    brightest = i;
  }
  pick(place(ray, brightest), maximum, color_at(colorTex, normalised(shown_value(maximum, sum, ray))).a);
}
