#version 330 core

#include "texel.glsl"
#include "colormap.glsl"
#include "image.glsl"
#include "overlay_main.glsl"
