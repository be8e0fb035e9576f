#version 330 core

layout(location = 0) in vec2 vertex;
uniform vec2 inputTextureSize;  // samples along depth, A-scans

noperspective out vec2 place;  // in the texture
flat out vec2 texel_size;      // of the texture's coordinates; a texel holds four samples along depth
flat out int last_lane;        // that holds a sample, in the last texel along depth

void main() {
  place = 0.5 + 0.5 * vertex;
  texel_size = 1.0 / vec2(ceil(inputTextureSize.x / 4.0), inputTextureSize.y);
  last_lane = (int(inputTextureSize.x) - 1) % 4;
  gl_Position = vec4(vertex, 1.0, 1.0);
}
