#version 330 core

#include "volume.glsl"
#include "ray.glsl"
#include "mip_main.glsl"
