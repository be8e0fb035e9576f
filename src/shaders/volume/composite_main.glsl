void main() {
  if (clipDist < 0.0) discard;
  Ray ray = castRay();
  vec3 current = front;
  int i = 0;
  for (; i < ray.sure; ++i) {
    composite(current);
    if (final.a > opaque) {
      fragColor = vec4(final.rgb, 1.0);
      return;
    }
    current += ray.step;
  }
  for (; i <= slices; ++i) {
    composite(current);
    if (final.a > opaque) {
      fragColor = vec4(final.rgb, 1.0);
      return;
    }
    if (atEnd(ray, current)) break;
    current += ray.step;
  }
  fragColor = final;
}
