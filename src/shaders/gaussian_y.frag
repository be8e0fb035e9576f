#version 330 core

#include "gaussian.glsl"

void main() { result = smoothed(vec2(0.0, 1.0 / inputTextureSize.y)); }
