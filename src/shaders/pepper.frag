#version 330 core

// Lifts texels below the mean of their 3 by 3 neighbourhood to that mean; bright structure stays as it is.
in vec2 tex_coord;
out float result;

uniform sampler2D inputTexture;
uniform vec2 inputTextureSize;

void main() {
  vec2 step = 1.0 / inputTextureSize;
  float sum = 0.0;
  for (int x = -1; x <= 1; ++x) {
    for (int y = -1; y <= 1; ++y) {
      sum += texture(inputTexture, tex_coord + vec2(float(x), float(y)) * step).r;
    }
  }
  float mean = sum / 9.0;
  float centre = texture(inputTexture, tex_coord).r;
  result = centre < mean ? mean : centre;
}
