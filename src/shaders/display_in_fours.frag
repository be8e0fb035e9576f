#version 330 core

#include "texel.glsl"
#include "colormap.glsl"
#include "image_in_fours.glsl"
#include "display_main.glsl"
