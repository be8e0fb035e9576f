#version 330 core

// A label keeps its size in pixels: only its anchor is projected, the quad is laid out on the screen.
layout(location = 0) in vec3 anchor;
layout(location = 1) in vec2 corner;  // of the quad, 0 to 1

uniform mat4 projection;
uniform mat4 modelview;
uniform vec2 viewport;     // pixels
uniform vec2 textureSize;  // pixels
uniform vec2 offset;       // pixels, from the anchor to the quad's lower left corner

out vec2 tex_coord;

void main() {
  vec4 pos = projection * modelview * vec4(anchor, 1.0);
  pos.xy = 2.0 * (pos.xy * 0.5 * viewport + (corner * textureSize + offset) * pos.w) / viewport;
  tex_coord = corner;
  gl_Position = pos;
}
