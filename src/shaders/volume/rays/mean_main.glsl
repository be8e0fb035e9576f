// The front point counts twice in the sum, and the last point not at all in the divisor.
void main() {
  if (clipDist < 0.0) discard;
  Ray ray = castRay();
  vec3 current = front;
  float mean = sampleAt(current);
  int i = 1;
  for (; i <= ray.sure; ++i) {
    mean += sampleAt(current);
    current += ray.step;
  }
  int counter = ray.sure;
  for (; i <= slices; ++i) {
    mean += sampleAt(current);
    if (atEnd(ray, current)) break;
    current += ray.step;
    ++counter;
  }
  mean /= float(counter);
  fragColor = colorAt(colorTex, normalised(mean));
}
