/* Draws a B-scan and writes it as a portable pixmap: draw_bscan OUT.ppm */
#include <math.h>
#include <stdio.h>

#include "oct_rendering/oct_rendering.h"

enum { depth = 256, a_scans = 300, width = 600, height = 512 };

static float image[a_scans][depth]; /* depth is fastest */
static unsigned char pixels[height][width][4];

int main(int argc, char** argv) {
  for (int x = 0; x < a_scans; ++x)
    for (int z = 0; z < depth; ++z) /* two layers below a wavy surface, in dB */
      image[x][z] = z < 60 + 20 * sin(x * 0.03) ? 5.0F : (z < 120 ? 45.0F : 30.0F) - 0.1F * z;

  OffscreenTargetHandle target = createOffscreenTarget(); /* an OpenGL context of its own */
  DisplayRenderingHandle display = createDisplayRendering();
  initDisplayRendering(display);
  setDisplayData(display, depth, a_scans, &image[0][0]);
  setDisplayColoringBoundaries(display, 0.0, 45.0);
  beginOffscreenFrame(target, width, height);
  renderDisplay(display);
  finishOffscreenFrameAs(target, OCT_PIXELS_RGBA_TOP_DOWN, pixels);
  uninitDisplayRendering(display);
  clearDisplayRendering(display);
  clearOffscreenTarget(target);

  char message[512];
  if (getRendererError(message, sizeof message)) return fprintf(stderr, "%s\n", message), 1;
  FILE* file = fopen(argc > 1 ? argv[1] : "bscan.ppm", "wb");
  if (!file) return perror("cannot write"), 1;
  fprintf(file, "P6 %d %d 255\n", width, height);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) fwrite(pixels[y][x], 1, 3, file); /* a pixmap has no alpha */
  return fclose(file) != 0;
}
