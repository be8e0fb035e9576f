/* Draws a volume with scale marks and writes it as a portable pixmap: draw_volume OUT.ppm */
#include <math.h>
#include <stdio.h>

#include "oct_rendering/oct_rendering.h"

enum { depth = 128, a_scans = 160, b_scans = 160, colors = 256, width = 640, height = 480 };

static float volume[b_scans][a_scans][depth]; /* depth is fastest */
static unsigned int ramp[colors];             /* 0xAABBGGRR */
static unsigned char pixels[height][width][4];

/* A skin-like phantom in dB: a ridged surface, a bright layer below it, a vessel in the tissue. */
static void fill(void) {
  for (int y = 0; y < b_scans; ++y)
    for (int x = 0; x < a_scans; ++x) {
      const double r = hypot(x - 80.0, y - 80.0);
      const double surface = 18.0 + r * r / 300.0 + 2.0 * sin(r * 0.6);
      for (int z = 0; z < depth; ++z) {
        const double below = z - surface;
        const double vessel = hypot(x - 60.0 - 15.0 * sin(y * 0.05), z - 65.0);
        double value = 5.0;
        if (below > 0.0) value = (below < 8.0 ? 48.0 : 38.0) - 0.25 * below;
        if (vessel < 7.0) value = 8.0;
        volume[y][x][z] = (float)value;
      }
    }
}

int main(int argc, char** argv) {
  fill();
  for (unsigned int i = 0; i < colors;
       ++i) /* gray to warm white, opacity rising with the square of the value */
    ramp[i] = (i * i / 1024U) << 24 | (i * 3U / 4U) << 16 | (i * 7U / 8U) << 8 | i;

  OffscreenTargetHandle target =
      createOffscreenTarget(); /* an OpenGL context of its own, current from now on */
  VolumeRendererHandle renderer = createVolumeRenderer();
  OfflineRenderingHandle offline = createOfflineRendering();
  initializeVolumeRenderer(renderer);
  setOfflineRenderingRenderer(offline, renderer);

  setOfflineAspectRatio(offline, 1.5F, 4.0F, 4.0F); /* millimetres: depth, A-scans, B-scans */
  allocateOfflineVolume(offline, depth, a_scans, b_scans);
  uploadOfflineVolume(offline, &volume[0][0][0]);

  setRendererColormap(renderer, ramp, colors);
  setRendererColoringBoundaries(renderer, 15.0, 50.0); /* dB; nothing is seen at 15 and below */
  setVolumeMode(renderer, OCT_VOLUME_COMPOSITE);
  setRenderingSlices(renderer, 256);
  setAngles(renderer, 30.0, -35.0);
  setClipPlane(renderer, 1, 0, 0.65F);

  beginOffscreenFrame(target, width, height);
  renderOfflineVolume(offline, OCT_CONTENT_VOLUME);
  finishOffscreenFrameAs(target, OCT_PIXELS_RGBA_TOP_DOWN, pixels);

  uninitializeVolumeRenderer(renderer);
  clearOfflineRendering(offline);
  deleteVolumeRenderer(renderer);
  clearOffscreenTarget(target);

  char message[512];
  if (getRendererError(message, sizeof message)) return fprintf(stderr, "%s\n", message), 1;
  FILE* file = fopen(argc > 1 ? argv[1] : "volume.ppm", "wb");
  if (!file) return perror("cannot write"), 1;
  fprintf(file, "P6 %d %d 255\n", width, height);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) fwrite(pixels[y][x], 1, 3, file); /* a pixmap has no alpha */
  return fclose(file) != 0;
}
