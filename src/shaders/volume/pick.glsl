// What lies under one pixel, in place of its colour. Places are in the space of the box, from 0 to 1.
layout(location = 0) out vec4 picked_place;  // and 1
layout(location = 1) out vec4 picked;        // value, and the opacity with which the pixel shows it

void pick(vec3 place, float value, float opacity) {
  picked_place = vec4(place, 1.0);
  picked = vec4(value, opacity, 0.0, 0.0);
}
