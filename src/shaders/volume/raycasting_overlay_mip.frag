#version 330 core

#include "volume.glsl"
#include "overlay.glsl"
#include "ray.glsl"
#include "mip_main.glsl"
