// Gaussian smoothing over five texels along one texture axis.
in vec2 tex_coord;
out float result;

uniform sampler2D inputTexture;
uniform vec2 inputTextureSize;

const float k[5] = float[5](0.1, 0.2, 0.4, 0.2, 0.1);

float smoothed(vec2 texel) {
  float sum = 0.0;
  for (int i = -2; i <= 2; ++i) sum += texture(inputTexture, tex_coord + float(i) * texel).r * k[i + 2];
  return sum;
}
