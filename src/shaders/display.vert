#version 330 core

// The picture stands transposed in the texture: depth runs along its first axis (s), A-scans along its second (t).
layout(location = 0) in vec2 vertex;
uniform bool flip;
out vec2 tex_coord;

void main() {
  tex_coord = flip ? vec2(0.5 + 0.5 * vertex.t, 0.5 + 0.5 * vertex.s)
                  : vec2(0.5 - 0.5 * vertex.t, 0.5 + 0.5 * vertex.s);
  gl_Position = vec4(vertex, 1.0, 1.0);
}
