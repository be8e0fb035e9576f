#version 330 core

// Gaussian smoothing over five texels along the second texture axis.
in vec2 texCoord;
out float result;

uniform sampler2D inputTexture;
uniform vec2 inputTextureSize;

const float k[5] = float[5](0.1, 0.2, 0.4, 0.2, 0.1);

void main() {
  float dy = 1.0 / inputTextureSize.y;
  result = 0.0;
  for (int y = -2; y <= 2; ++y) {
    result += texture(inputTexture, texCoord + vec2(0.0, float(y) * dy)).r * k[y + 2];
  }
}
