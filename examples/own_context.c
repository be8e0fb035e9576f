/*
 * A B-scan and a volume in a window of the program's own, with GLFW: own_context [FRAMES OUT.ppm]
 *
 * The left mouse button turns the volume, the wheel zooms. With FRAMES the program draws so many frames, writes the
 * last one and ends.
 */
#include <GLFW/glfw3.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>

#include "oct_rendering/oct_rendering.h"

enum { depth = 96, a_scans = 128, b_scans = 128 };

static float volume[b_scans][a_scans][depth]; /* dB, depth is fastest */

typedef struct View {
  VolumeRendererHandle renderer;
  double angle_x, angle_y, zoom, cursor_x, cursor_y;
} View;

static void on_move(GLFWwindow* window, double x, double y) {
  View* view = glfwGetWindowUserPointer(window);
  if (glfwGetMouseButton(window, GLFW_MOUSE_BUTTON_LEFT) == GLFW_PRESS) {
    view->angle_x += 0.4 * (y - view->cursor_y); /* degrees a pixel */
    view->angle_y += 0.4 * (x - view->cursor_x);
    setAngles(view->renderer, view->angle_x, view->angle_y);
  }
  view->cursor_x = x;
  view->cursor_y = y;
}

static void on_scroll(GLFWwindow* window, double x, double y) {
  View* view = glfwGetWindowUserPointer(window);
  (void)x;
  view->zoom = fmin(fmax(view->zoom - 2.0 * y, 5.0), 80.0);
  setZoom(view->renderer, view->zoom);
}

static void fill(void) {
  for (int y = 0; y < b_scans; ++y)
    for (int x = 0; x < a_scans; ++x)
      for (int z = 0; z < depth; ++z) {
        const double below = z - 20.0 - 6.0 * sin(x * 0.08) * cos(y * 0.06);
        volume[y][x][z] = (float)(below > 0.0 ? 50.0 - 0.6 * below : 4.0);
      }
}

/* A renderer fills the viewport; what it clears is limited by the scissor. */
static void draw_into(int x, int width, int height) {
  glViewport(x, 0, width, height);
  glScissor(x, 0, width, height);
  glEnable(GL_SCISSOR_TEST);
}

static int write_picture(const char* name, const unsigned char* rgb, int width, int height) {
  FILE* file = fopen(name, "wb");
  if (!file) return perror(name), 1;
  fprintf(file, "P6 %d %d 255\n", width, height);
  for (int y = height - 1; y >= 0; --y) fwrite(rgb + (size_t)y * width * 3, 3, (size_t)width, file);
  return fclose(file) != 0;
}

int main(int argc, char** argv) {
  const int frames = argc > 2 ? atoi(argv[1]) : 0;
  if (!glfwInit()) return fprintf(stderr, "no window system\n"), 1;
  glfwWindowHint(GLFW_CONTEXT_VERSION_MAJOR, 3);
  glfwWindowHint(GLFW_CONTEXT_VERSION_MINOR, 3);
  glfwWindowHint(GLFW_OPENGL_PROFILE, GLFW_OPENGL_CORE_PROFILE);
  GLFWwindow* window = glfwCreateWindow(960, 480, "B-scan and volume", NULL, NULL);
  if (!window) return fprintf(stderr, "no OpenGL 3.3\n"), 1;
  glfwMakeContextCurrent(window);
  glfwSwapInterval(1);

  /* Renderers are at home in the context that is current when they are initialised. */
  fill();
  DisplayRenderingHandle display = createDisplayRendering();
  initDisplayRendering(display);
  setDisplayData(display, depth, a_scans, &volume[b_scans / 2][0][0]);
  setDisplayColoringBoundaries(display, 0.0, 50.0);
  VolumeRendererHandle renderer = createVolumeRenderer();
  initializeVolumeRenderer(renderer);
  OfflineRenderingHandle offline = createOfflineRendering();
  setOfflineRenderingRenderer(offline, renderer);
  setOfflineAspectRatio(offline, 2.0F, 4.0F, 4.0F);
  allocateOfflineVolume(offline, depth, a_scans, b_scans);
  uploadOfflineVolume(offline, &volume[0][0][0]);
  unsigned char ramp[256][4]; /* red, green, blue, opacity of one step of a ray */
  for (int i = 0; i < 256; ++i) {
    ramp[i][0] = ramp[i][1] = (unsigned char)i;
    ramp[i][2] = (unsigned char)(255 - i / 2);
    ramp[i][3] = (unsigned char)(i * i / 512);
  }
  setRendererColormap(renderer, ramp, 256);
  setRendererColoringBoundaries(renderer, 5.0, 50.0);

  View view = {renderer, 25.0, -30.0, 48.0, 0.0, 0.0};
  glfwSetWindowUserPointer(window, &view);
  glfwSetCursorPosCallback(window, on_move);
  glfwSetScrollCallback(window, on_scroll);
  setAngles(renderer, view.angle_x, view.angle_y);
  setZoom(renderer, view.zoom);

  int result = 0;
  for (int frame = 1; !glfwWindowShouldClose(window); ++frame) {
    int width, height;
    glfwGetFramebufferSize(window, &width, &height);
    draw_into(0, width / 2, height);
    renderDisplay(display);
    draw_into(width / 2, width - width / 2, height);
    renderOfflineVolume(offline, OCT_CONTENT_VOLUME);
    if (frame == frames) {
      unsigned char* rgb = malloc((size_t)width * height * 3);
      glPixelStorei(GL_PACK_ALIGNMENT, 1);
      glReadPixels(0, 0, width, height, GL_RGB, GL_UNSIGNED_BYTE, rgb);
      result = write_picture(argv[2], rgb, width, height);
      free(rgb);
      break;
    }
    glfwSwapBuffers(window);
    glfwPollEvents();
  }

  uninitDisplayRendering(display);
  clearDisplayRendering(display);
  uninitializeVolumeRenderer(renderer);
  clearOfflineRendering(offline);
  deleteVolumeRenderer(renderer);
  glfwTerminate();

  char message[512];
  if (getRendererError(message, sizeof message)) return fprintf(stderr, "%s\n", message), 1;
  return result;
}
