// The loop over the steps that need no measuring has one way out: several cost more than they save.
void main() {
  if (clipDist < 0.0) discard;
  Ray ray = castRay();
  vec3 current = front;
  int i = 0;
  while (i < ray.sure && !(final.a > opaque)) {
    composite(current);
    current += ray.step;
    ++i;
  }
  if (!(final.a > opaque)) {
    for (; i <= slices; ++i) {
      composite(current);
      if (final.a > opaque || atEnd(ray, current)) break;
      current += ray.step;
    }
  }
  fragColor = final.a > opaque ? vec4(final.rgb, 1.0) : final;
}
