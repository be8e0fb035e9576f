#version 330 core

#include "volume/volume.glsl"
#include "volume/overlay.glsl"
#include "volume/rays/ray.glsl"
#include "volume/rays/mip_main.glsl"
