// The front point is sampled twice, before the loop and by its first turn; the second time changes no maximum and is
// left out.
void main() {
  if (clipDist < 0.0) discard;
  Ray ray = castRay();
  vec3 current = front;
  float maximum = sampleAt(current);
  int i = 1;
  if (i <= ray.sure) {
    current += ray.step;
    ++i;
  }
  while (i <= ray.sure && !(maximum > upperValue)) {
    maximum = max(maximum, sampleAt(current));
    current += ray.step;
    ++i;
  }
  if (!(maximum > upperValue)) {
    for (; i <= slices; ++i) {
      maximum = max(maximum, sampleAt(current));
      if (maximum > upperValue || atEnd(ray, current)) break;
      current += ray.step;
    }
  }
  fragColor = colorAt(colorTex, normalised(maximum));
}
