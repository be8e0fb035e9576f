#version 330 core

// A label keeps its size in pixels: only its anchor is projected, the quad is laid out on the screen.
layout(location = 0) in vec3 anchor;
layout(location = 1) in vec4 corner;  // of the quad: pixels from the anchor on the screen, and texels

uniform mat4 projection;
uniform mat4 modelview;
uniform vec2 viewport;  // pixels

out vec2 texel;

void main() {
  vec4 pos = projection * modelview * vec4(anchor, 1.0);
  pos.xy = 2.0 * (pos.xy * 0.5 * viewport + corner.xy * pos.w) / viewport;
  texel = corner.zw;
  gl_Position = pos;
}
