// Where a composite has half of the opacity that it ends with.
float opacity_along(Ray ray) {
  for (int i = 0; i <= ray.last && !(final.a > opaque); ++i) composite(place(ray, i));
  return final.a > opaque ? 1.0 : final.a;
}

void pick_half(Ray ray, float all, float shown) {
  final = vec4(0.0);
  int i = -1;
  do {
    ++i;
    composite(place(ray, i));
  } while (i < ray.last && !(final.a >= 0.5 * all));
  pick(place(ray, i), sample_at(place(ray, i)), shown);
}
