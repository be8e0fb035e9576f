/* Draws a B-scan and writes it as a portable pixmap: draw_bscan OUT.ppm */
#include <math.h>
#include <oct_rendering/oct_rendering.h>
#include <stdio.h>

enum { DEPTH = 256, A_SCANS = 300, WIDTH = 600, HEIGHT = 512 };

static float image[A_SCANS][DEPTH]; /* depth is fastest */
static unsigned char pixels[HEIGHT][WIDTH][4];

int main(int argc, char** argv) {
  for (int x = 0; x < A_SCANS; ++x)
    for (int z = 0; z < DEPTH; ++z) /* two layers below a wavy surface, in dB */
      image[x][z] = z < 60 + 20 * sin(x * 0.03) ? 5.0f : (z < 120 ? 45.0f : 30.0f) - 0.1f * z;

  OffscreenTargetHandle target = createOffscreenTarget(); /* an OpenGL context of its own */
  DisplayRenderingHandle display = createDisplayRendering();
  initDisplayRendering(display);
  setDisplayData(display, DEPTH, A_SCANS, &image[0][0]);
  setDisplayColoringBoundaries(display, 0.0, 45.0);
  beginOffscreenFrame(target, WIDTH, HEIGHT);
  renderDisplay(display);
  finishOffscreenFrame(target, pixels); /* BGRA, bottom row first */
  uninitDisplayRendering(display);
  clearDisplayRendering(display);
  clearOffscreenTarget(target);

  char message[512];
  if (getRendererError(message, sizeof message)) return fprintf(stderr, "%s\n", message), 1;
  FILE* file = fopen(argc > 1 ? argv[1] : "bscan.ppm", "wb");
  if (!file) return perror("cannot write"), 1;
  fprintf(file, "P6 %d %d 255\n", WIDTH, HEIGHT);
  for (int y = HEIGHT - 1; y >= 0; --y)
    for (int x = 0; x < WIDTH; ++x)
      fwrite((unsigned char[]){pixels[y][x][2], pixels[y][x][1], pixels[y][x][0]}, 1, 3, file);
  return fclose(file) != 0;
}
