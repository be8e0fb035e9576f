uniform sampler2D displayTex;
flat in vec2 texel_size;

// Beyond the image the texture repeats the sample at its edge. Texels are found by their centres: texelFetch costs
// more where the processor draws.
float sample_at(ivec2 place) { return texture(displayTex, (vec2(place) + 0.5) * texel_size).r; }
