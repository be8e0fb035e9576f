#version 330 core

#include "texel.glsl"
#include "colormap.glsl"
#include "image.glsl"
#include "display_main.glsl"
