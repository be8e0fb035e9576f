noperspective in vec2 position;  // pixels along the image's axes
flat in ivec2 pixels;
flat in ivec2 samples;  // of the displayed image

// The sample of an image below the pixel's centre: floor((pixel + 0.5) / pixels * image_size), exactly. At every even
// reduction that is the border between two samples, where the rounding of an interpolated coordinate would decide,
// differently on every driver. Here rounding only has to find the pixel, half a pixel away from the next; the float
// quotient, taken a little too small, is then the sample or the one before, and is put right in integers. (An integer
// division would cost several times as much.)
ivec2 sample_below(ivec2 image_size) {
  ivec2 unit = 2 * pixels;
  ivec2 parts = (2 * ivec2(position) + 1) * image_size;  // of a sample, unit to one
  ivec2 found = ivec2(vec2(parts) * ((1.0 - 1e-6) / vec2(unit)));
  return found + ivec2(greaterThanEqual(parts - found * unit, unit));
}
