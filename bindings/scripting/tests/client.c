/* What MATLAB and LabVIEW can do: no callbacks, one thread, values in and out. C89.
   client DEVICE_LIBRARY: a volume of the caller's, then live volumes of the simulated device. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "oct_rendering_scripting.h"

/* The simulated device's own functions. */
void* createSimulatedDevice(int phantom, int spectrum, unsigned int seed);
void* createSimulatedProcessing(void* device);
void* createSimulatedScanPattern(void* device, int a_scans, int b_scans, double x, double y);
void clearSimulatedScanPattern(void* pattern);
void clearSimulatedProcessing(void* processing);
void clearSimulatedDevice(void* device);

enum { WIDTH = 120, HEIGHT = 90, DEPTH = 34, A_SCANS = 26, B_SCANS = 18 };

static unsigned char pixels[HEIGHT * WIDTH * 4];
static float samples[DEPTH * A_SCANS * B_SCANS];
static char text[512];

static void expect(int condition, const char* what) {
  if (condition) return;
  printf("expected: %s\n", what);
  while (getRendererError(text, sizeof text) != 0) printf("%s\n", text);
  exit(1);
}

/* How many different values the picture has. */
static int values(void) {
  int seen[256] = {0};
  int count = 0;
  size_t i;
  for (i = 0; i < sizeof pixels; ++i) count += seen[pixels[i]]++ == 0;
  return count;
}

static void draw_volume(OffscreenTargetHandle target, VolumeRendererHandle renderer) {
  OfflineRenderingHandle volume = createOfflineRendering();
  size_t i;
  for (i = 0; i < sizeof samples / sizeof *samples; ++i) samples[i] = (float)(i * 7 % 64) / 64.0F;
  setOfflineRenderingRenderer(volume, renderer);
  setOfflineAspectRatio(volume, 1.0F, 2.0F, 3.0F);
  allocateOfflineVolume(volume, DEPTH, A_SCANS, B_SCANS);
  uploadOfflineVolume(volume, samples);
  beginOffscreenFrame(target, WIDTH, HEIGHT);
  renderOfflineVolume(volume, OCT_CONTENT_VOLUME);
  finishOffscreenFrameAs(target, OCT_PIXELS_RGBA_TOP_DOWN, pixels);
  expect(getRendererErrorKind() == OCT_ERROR_NONE && values() > 100, "a picture");
  uploadOfflineVolumeSlice(volume, B_SCANS, samples);
  expect(getRendererErrorKind() == OCT_ERROR_ARGUMENT, "the kind of an error");
  expect(getRendererError(text, sizeof text) == OCT_RENDERER_ERROR, "an error");
  clearOfflineRendering(volume);
}

static void draw_live(OffscreenTargetHandle target, VolumeRendererHandle renderer, const char* library) {
  void* device = createSimulatedDevice(0, 128, 1);
  void* processing = createSimulatedProcessing(device);
  void* pattern = createSimulatedScanPattern(device, 12, 10, 4.0, 4.0);
  LiveVolumeRenderingHandle live = createLiveRendering();
  LiveDataSourceHandle source;
  OctLiveStatistics told;
  const time_t end = time(NULL) + 30;
  setDeviceLibrary(library);
  source = createOnlineDataSource(device, processing);
  setLiveVolumeRenderingRenderer(live, renderer);
  setRenderElements(renderer, 1, 0);
  expect(getRefIntensity(source) == -1.0, "nothing measured");
  startDataSource(live, source, pattern);
  memset(&told, 0, sizeof told);
  told.size = sizeof told;
  memset(pixels, 0, sizeof pixels);
  while (time(NULL) < end && (told.shown[0] < 3 || getRefIntensity(source) < 0.0)) {
    beginOffscreenFrame(target, WIDTH, HEIGHT);
    renderVolume(live);
    finishOffscreenFrame(target, pixels);
    getLiveStatistics(live, &told);
  }
  expect(told.shown[0] >= 3 && told.shown[1] == 0 && told.acquired[0] >= told.shown[0], "live volumes");
  expect(values() > 16, "a picture of them");
  expect(getRefIntensity(source) > 0.0 && getRefIntensity(source) <= 1.0, "the reference intensity");
  expect(isDataSourceRunning(source) == 1, "a byte of 1");
  expect(getDataSourceError(source, text, sizeof text) == 0, "no error of the source");
  cancelDataSource(source);
  setSizeZ(source, 1000);
  startDataSource(live, source, pattern);
  while (time(NULL) < end && isDataSourceRunning(source)) {
    beginOffscreenFrame(target, WIDTH, HEIGHT);
    renderVolume(live);
    finishOffscreenFrame(target, NULL);
  }
  expect(getDataSourceError(source, text, sizeof text) == OCT_RENDERER_ERROR, "an error of the source");
  expect(strcmp(text, "Insufficient memory allocated.") == 0, text);
  clearDataSource(source);
  clearLiveRendering(live);
  clearSimulatedScanPattern(pattern);
  clearSimulatedProcessing(processing);
  clearSimulatedDevice(device);
}

int main(int count, char** arguments) {
  OffscreenTargetHandle target = createOffscreenTarget();
  VolumeRendererHandle renderer = createVolumeRenderer();
  if (count != 2) return 2;
  initializeVolumeRenderer(renderer);
  setVolumeMode(renderer, OCT_VOLUME_MAXIMUM);
  setUsePerspective(renderer, 0);
  setAngles(renderer, 30.0, -50.0);
  draw_volume(target, renderer);
  setRendererColoringBoundaries(renderer, 20.0, 60.0);
  draw_live(target, renderer, arguments[1]);
  uninitializeVolumeRenderer(renderer);
  deleteVolumeRenderer(renderer);
  clearOffscreenTarget(target);
  return 0;
}
