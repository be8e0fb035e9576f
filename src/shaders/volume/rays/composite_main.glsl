// The loop over the steps that need no measuring has one way out: several cost more than they save.
void main() {
  if (clip_dist < 0.0) discard;
  Ray ray = cast_ray();
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
      if (final.a > opaque || at_end(ray, current)) break;
      current += ray.step;
    }
  }
  frag_color = final.a > opaque ? vec4(final.rgb, 1.0) : final;
}
