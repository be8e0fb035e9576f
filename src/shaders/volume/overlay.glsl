// A second volume of the same layout that is laid over the first.
uniform sampler3D volumeOverlayTex;
uniform sampler1D colorOverlayTex;
uniform vec2 overlayValues;  // lower and upper coloring boundary

float normalised_overlay(float value) {
  return (value - overlayValues.x) / (overlayValues.y - overlayValues.x);
}
