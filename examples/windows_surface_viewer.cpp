// Shows a volume in a window, by the Direct3D surfaces of a control loop: windows_surface_viewer
// [PICTURE.png] Drag with the left button to turn the volume, use the wheel to come closer. The key S writes
// what is shown as PNG.
#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <mutex>
#include <string>
#include <vector>

#include <windows.h>
#include <d3d9.h>
#include <windowsx.h>

#include "oct_rendering/oct_rendering.h"

#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>

namespace {

constexpr int voxels = 64;  // along each axis
constexpr int width = 640;
constexpr int height = 480;
constexpr UINT frame_arrived = WM_APP;

HWND window = nullptr;
OpenGLControlLoopHandle loop = nullptr;
VolumeRendererHandle renderer = nullptr;
OfflineRenderingHandle volume = nullptr;
std::mutex mutex;
IDirect3DSurface9* kept = nullptr;  // the latest frame, guarded by the mutex
std::atomic<bool> broken{false};
const char* picture = "windows_surface_viewer.png";

// Two layers below a wavy surface, with a ball in the lower one; 0 is empty, 1 is bright.
float tissue(int depth, int x, int z) {
  const double surface = 12 + 4 * std::sin(x * 0.2) * std::cos(z * 0.15);
  if (depth < surface) return 0.0F;
  if (std::hypot(depth - 42, x - 30, z - 34) < 11) return 0.95F;
  const double below = depth - surface;
  return static_cast<float>((below < 5 ? 0.9 : 0.4) - below * 0.005);
}

// Direct3D takes OpenGL's bottom row for its top one, and StretchRect cannot mirror. Therefore the volume
// itself stands on its head, and its turns about the horizontal axis go the other way round (see turn).
std::vector<float> volume_on_its_head() {
  std::vector<float> data;
  for (int z = 0; z < voxels; ++z) {
    for (int x = 0; x < voxels; ++x) {
      for (int y = voxels; y-- > 0;) data.push_back(tissue(y, x, z));
    }
  }
  return data;
}

std::vector<unsigned char> colours() {
  std::vector<unsigned char> map;  // from transparent blue to opaque yellow
  for (int i = 0; i < 256; ++i) {
    const double t = i / 255.0;
    for (const double channel : {t, 0.2 + 0.7 * t, 0.8 - 0.5 * t, 0.25 * t * t}) {
      map.push_back(static_cast<unsigned char>(std::lround(channel * 255)));
    }
  }
  return map;
}

// On the render thread, the context current.
void init() {
  initializeVolumeRenderer(renderer);
  const auto map = colours();
  setRendererColormap(renderer, map.data(), static_cast<int>(map.size() / 4));
  setRenderBackground(renderer, 0x101820FF, 0x101820FF);
  setBorder(renderer, 0, 1, 0);  // edges; numbers would be mirrored
  setOfflineRenderingRenderer(volume, renderer);
  setOfflineAspectRatio(volume, 1.0F, 1.0F, 1.0F);
  allocateOfflineVolume(volume, voxels, voxels, voxels);
  uploadOfflineVolume(volume, volume_on_its_head().data());
}
void uninit() {
  clearOfflineRendering(volume);
  uninitializeVolumeRenderer(renderer);
  deleteVolumeRenderer(renderer);
}
void draw(unsigned) {
  renderOfflineVolume(volume, 0);
}
void failed(const char* message) {
  std::fprintf(stderr, "%s\n", message);
  broken = true;
  PostMessageA(window, WM_CLOSE, 0, 0);
}

// On the return thread: keep a copy of the frame and tell the window. The frame itself is drawn into again as
// soon as this returns.
void show(unsigned, unsigned, unsigned, void* surface) {
  {
    const std::lock_guard lock(mutex);
    copyDXSurface(loop, surface, kept);
  }
  PostMessageA(window, frame_arrived, 0, 0);
}

// A swap chain of the device that the surface belongs to, for our window.
class Screen {
 public:
  Screen() {
    if (FAILED(kept->GetDevice(&device_))) return;
    D3DPRESENT_PARAMETERS parameters{};
    parameters.Windowed = TRUE;
    parameters.SwapEffect = D3DSWAPEFFECT_DISCARD;
    parameters.BackBufferFormat = D3DFMT_X8R8G8B8;
    parameters.BackBufferWidth = width;
    parameters.BackBufferHeight = height;
    parameters.hDeviceWindow = window;
    device_->CreateAdditionalSwapChain(&parameters, &chain_);
  }
  ~Screen() {
    if (chain_) chain_->Release();
    if (device_) device_->Release();
  }
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;

  void present() {
    IDirect3DSurface9* const back = drawn_back_buffer();
    if (!back) return;
    back->Release();
    chain_->Present(nullptr, nullptr, nullptr, nullptr, 0);
  }

  bool save(const char* file) {
    IDirect3DSurface9* const back = drawn_back_buffer();
    IDirect3DSurface9* memory = nullptr;
    D3DLOCKED_RECT pixels{};
    bool written = false;
    if (back &&
        SUCCEEDED(device_->CreateOffscreenPlainSurface(width, height, D3DFMT_X8R8G8B8, D3DPOOL_SYSTEMMEM,
                                                       &memory, nullptr)) &&
        SUCCEEDED(device_->GetRenderTargetData(back, memory)) &&
        SUCCEEDED(memory->LockRect(&pixels, nullptr, D3DLOCK_READONLY))) {
      std::vector<unsigned char> rgb;
      for (int y = 0; y < height; ++y) {
        const auto* pixel = static_cast<const unsigned char*>(pixels.pBits) + y * pixels.Pitch;
        for (int x = 0; x < width; ++x, pixel += 4) rgb.insert(rgb.end(), {pixel[2], pixel[1], pixel[0]});
      }
      memory->UnlockRect();
      written = stbi_write_png(file, width, height, 3, rgb.data(), width * 3) != 0;
    }
    if (memory) memory->Release();
    if (back) back->Release();
    return written;
  }

 private:
  // With the latest frame in it; null on failure.
  IDirect3DSurface9* drawn_back_buffer() {
    IDirect3DSurface9* back = nullptr;
    if (!chain_ || FAILED(chain_->GetBackBuffer(0, D3DBACKBUFFER_TYPE_MONO, &back))) return nullptr;
    const std::lock_guard lock(mutex);
    device_->StretchRect(kept, nullptr, back, nullptr, D3DTEXF_NONE);
    return back;
  }

  IDirect3DDevice9* device_ = nullptr;
  IDirect3DSwapChain9* chain_ = nullptr;
};

// What the mouse does to the view.
class View {
 public:
  void grab(POINT at) { last_ = at; }
  void drag(POINT to) {
    angle_y_ += (to.x - last_.x) * 0.5;
    angle_x_ += (to.y - last_.y) * 0.5;
    last_ = to;
    turn();
  }
  void wheel(int steps) {
    zoom_ = std::clamp(zoom_ * std::pow(0.9, steps), 10.0, 80.0);
    turn();
  }
  void turn() const {
    setAngles(renderer, -angle_x_, angle_y_);
    setZoom(renderer, zoom_);
    renderOpenGLControlLoop(loop);
  }

 private:
  POINT last_{};
  double angle_x_ = 25.0;  // degrees
  double angle_y_ = 30.0;
  double zoom_ = 50.0;
};

View view;
Screen* screen = nullptr;
int frames = 0;

LRESULT CALLBACK window_procedure(HWND handle, UINT message, WPARAM wide, LPARAM data) {
  const POINT mouse{GET_X_LPARAM(data), GET_Y_LPARAM(data)};
  switch (message) {
    case frame_arrived:
      if (screen) screen->present();
      SetWindowTextA(handle, ("Volume, frame " + std::to_string(++frames)).c_str());
      return 0;
    case WM_LBUTTONDOWN:
      view.grab(mouse);
      return 0;
    case WM_MOUSEMOVE:
      if (wide & MK_LBUTTON) view.drag(mouse);
      return 0;
    case WM_MOUSEWHEEL:
      view.wheel(GET_WHEEL_DELTA_WPARAM(wide) / WHEEL_DELTA);
      return 0;
    case WM_KEYDOWN:
      if (wide == 'S' && screen && !screen->save(picture))
        std::fprintf(stderr, "Could not write %s\n", picture);
      return 0;
    case WM_PAINT:
      ValidateRect(handle, nullptr);
      if (screen) screen->present();
      return 0;
    case WM_DESTROY:
      PostQuitMessage(0);
      return 0;
    default:
      return DefWindowProcA(handle, message, wide, data);
  }
}

void make_window() {
  WNDCLASSA record{};
  record.lpfnWndProc = window_procedure;
  record.hInstance = GetModuleHandleA(nullptr);
  record.hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW));
  record.lpszClassName = "SurfaceViewer";
  RegisterClassA(&record);
  RECT area{0, 0, width, height};
  AdjustWindowRect(&area, WS_OVERLAPPEDWINDOW, FALSE);
  window = CreateWindowA(record.lpszClassName, "Volume", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 40, 40,
                         area.right - area.left, area.bottom - area.top, nullptr, nullptr, record.hInstance,
                         nullptr);
}

void answer_messages() {
  MSG message;
  while (GetMessageA(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1) picture = argv[1];
  make_window();
  renderer = createVolumeRenderer();
  volume = createOfflineRendering();
  prepareOpenGL();
  loop = createOpenGLControlLoopCB(init, uninit, failed);
  kept = static_cast<IDirect3DSurface9*>(createDXSurface(loop, width, height));
  if (kept) {
    Screen shown;
    screen = &shown;
    registerOpenGLControlLoopRenderCallback(loop, draw);
    registerOpenGLControlLoopCallback(loop, show);
    OpenGLControlLoopMode(loop, 0);
    resizeOpenGLControlLoop(loop, width, height);
    view.turn();
    answer_messages();
    screen = nullptr;
    registerOpenGLControlLoopCallback(loop, nullptr);
    destroyDXSurface(loop, kept);
  }
  deleteOpenGLControlLoop(loop);
  finishOpenGL();
  char text[512];
  if (getRendererError(text, sizeof text)) broken = true, std::fprintf(stderr, "%s\n", text);
  return broken ? 1 : 0;
}
