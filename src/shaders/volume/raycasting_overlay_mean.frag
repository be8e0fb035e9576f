#version 330 core

#include "volume.glsl"
#include "overlay.glsl"
#include "ray.glsl"
#include "mean_main.glsl"
