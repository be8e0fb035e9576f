#version 330 core

#include "volume.glsl"
#include "ray.glsl"
#include "mean_main.glsl"
