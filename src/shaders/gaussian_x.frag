#version 330 core

#include "gaussian.glsl"

void main() { result = smoothed(vec2(1.0 / inputTextureSize.x, 0.0)); }
