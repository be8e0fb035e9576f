#version 330 core

#include "volume/volume.glsl"
#include "volume/rays/ray.glsl"
#include "volume/rays/mean_main.glsl"
