#version 330 core

// Gaussian smoothing over five texels along the first texture axis.
in vec2 texCoord;
out float result;

uniform sampler2D inputTexture;
uniform vec2 inputTextureSize;

const float k[5] = float[5](0.1, 0.2, 0.4, 0.2, 0.1);

void main() {
  float dx = 1.0 / inputTextureSize.x;
  result = 0.0;
  for (int x = -2; x <= 2; ++x) {
    result += texture(inputTexture, texCoord + vec2(float(x) * dx, 0.0)).r * k[x + 2];
  }
}
