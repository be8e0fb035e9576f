// The front point is sampled twice, before the loop and by its first turn.
void main() {
  if (clipDist < 0.0) discard;
  Ray ray = castRay();
  vec3 current = front;
  float maximum = sampleAt(current);
  int i = 1;
  for (; i <= ray.sure; ++i) {
    maximum = max(maximum, sampleAt(current));
    if (maximum > upperValue) break;
    current += ray.step;
  }
  for (; i <= slices; ++i) {
    maximum = max(maximum, sampleAt(current));
    if (maximum > upperValue || atEnd(ray, current)) break;
    current += ray.step;
  }
  fragColor = texture(colorTex, normalised(maximum));
}
