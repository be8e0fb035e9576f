// Shows the Direct3D surfaces of a control loop in a window: windows_surface_viewer [--frames N]
// Drag with the left button to change the colours: left and right move the lower boundary, up and down the
// upper one. The wheel turns the picture upside down.
#include <d3d9.h>
#include <oct_rendering/oct_rendering.h>
#include <windows.h>
#include <windowsx.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <vector>

namespace {

constexpr int depth = 256;
constexpr int aScans = 400;
constexpr int width = 640;
constexpr int height = 480;
constexpr UINT frameArrived = WM_APP;

HWND window = nullptr;
OpenGLControlLoopHandle loop = nullptr;
DisplayRenderingHandle display = nullptr;
std::mutex mutex;
IDirect3DSurface9* kept = nullptr;  // the latest frame, guarded by the mutex
POINT last{};
double lower = 0.0;
double upper = 45.0;
int flip = 0;

void init() {
  initDisplayRendering(display);
}
void uninit() {
  uninitDisplayRendering(display);
}
void draw(unsigned) {
  renderDisplay(display);
}
void failed(const char* message) {
  std::fprintf(stderr, "%s\n", message);
  PostMessageA(window, WM_CLOSE, 0, 0);
}

// On the return thread: keep a copy of the frame and tell the window. The frame itself is drawn into again as
// soon as this returns.
void show(unsigned, unsigned, unsigned, void* surface) {
  {
    const std::lock_guard lock(mutex);
    copyDXSurface(loop, surface, kept);
  }
  PostMessageA(window, frameArrived, 0, 0);
}

// A swap chain of the device that the surface belongs to, for our window.
class Screen {
 public:
  Screen() {
    IDirect3DDevice9* device = nullptr;
    if (FAILED(kept->GetDevice(&device))) return;
    D3DPRESENT_PARAMETERS parameters{};
    parameters.Windowed = TRUE;
    parameters.SwapEffect = D3DSWAPEFFECT_DISCARD;
    parameters.BackBufferFormat = D3DFMT_X8R8G8B8;
    parameters.BackBufferWidth = width;
    parameters.BackBufferHeight = height;
    parameters.hDeviceWindow = window;
    device->CreateAdditionalSwapChain(&parameters, &chain_);
    device_ = device;
  }
  ~Screen() {
    if (chain_) chain_->Release();
    if (device_) device_->Release();
  }
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;

  // OpenGL's first row is the bottom one and Direct3D's the top one: StretchRect cannot mirror, so the
  // picture is flipped where it is drawn (see setDisplayFlip below).
  void present() {
    IDirect3DSurface9* back = nullptr;
    if (!chain_ || FAILED(chain_->GetBackBuffer(0, D3DBACKBUFFER_TYPE_MONO, &back))) return;
    {
      const std::lock_guard lock(mutex);
      device_->StretchRect(kept, nullptr, back, nullptr, D3DTEXF_NONE);
    }
    back->Release();
    chain_->Present(nullptr, nullptr, nullptr, nullptr, 0);
  }

 private:
  IDirect3DDevice9* device_ = nullptr;
  IDirect3DSwapChain9* chain_ = nullptr;
};

Screen* screen = nullptr;
int framesLeft = -1;

LRESULT CALLBACK windowProcedure(HWND handle, UINT message, WPARAM wide, LPARAM data) {
  switch (message) {
    case frameArrived:
      if (screen) screen->present();
      if (framesLeft > 0 && --framesLeft == 0) PostMessageA(handle, WM_CLOSE, 0, 0);
      if (framesLeft > 0) renderOpenGLControlLoop(loop);
      return 0;
    case WM_LBUTTONDOWN:
      last = {GET_X_LPARAM(data), GET_Y_LPARAM(data)};
      return 0;
    case WM_MOUSEMOVE:
      if (!(wide & MK_LBUTTON)) return 0;
      lower += (GET_X_LPARAM(data) - last.x) * 0.1;
      upper += (last.y - GET_Y_LPARAM(data)) * 0.1;
      last = {GET_X_LPARAM(data), GET_Y_LPARAM(data)};
      setDisplayColoringBoundaries(display, lower, std::max(upper, lower + 1.0));
      renderOpenGLControlLoop(loop);
      return 0;
    case WM_MOUSEWHEEL:
      flip = !flip;
      setDisplayFlip(display, !flip);
      renderOpenGLControlLoop(loop);
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

void makeWindow() {
  WNDCLASSA record{};
  record.lpfnWndProc = windowProcedure;
  record.hInstance = GetModuleHandleA(nullptr);
  record.hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW));
  record.lpszClassName = "SurfaceViewer";
  RegisterClassA(&record);
  RECT area{0, 0, width, height};
  AdjustWindowRect(&area, WS_OVERLAPPEDWINDOW, FALSE);
  window = CreateWindowA(record.lpszClassName, "B-scan", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 40, 40,
                         area.right - area.left, area.bottom - area.top, nullptr, nullptr, record.hInstance,
                         nullptr);
}

void setImage() {
  std::vector<float> image(static_cast<std::size_t>(depth) *
                           aScans);  // two layers below a wavy surface, in dB
  for (int x = 0; x < aScans; ++x) {
    for (int z = 0; z < depth; ++z) {
      const double surface = 60 + 20 * std::sin(x * 0.03);
      const double value = z < surface ? 5 : (z < surface + 60 ? 45 : 30) - 0.1 * z;
      image[static_cast<std::size_t>(x * depth + z)] = static_cast<float>(value);
    }
  }
  setDisplayData(display, depth, aScans, image.data());
  setDisplayColoringBoundaries(display, lower, upper);
  setDisplayFlip(display, 1);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3 && std::strcmp(argv[1], "--frames") == 0) framesLeft = std::atoi(argv[2]);
  makeWindow();
  display = createDisplayRendering();
  setImage();
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
    renderOpenGLControlLoop(loop);
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) {
      TranslateMessage(&message);
      DispatchMessageA(&message);
    }
    screen = nullptr;
    registerOpenGLControlLoopCallback(loop, nullptr);
  }
  if (kept) destroyDXSurface(loop, kept);
  deleteOpenGLControlLoop(loop);
  clearDisplayRendering(display);
  finishOpenGL();
  char text[512];
  if (!getRendererError(text, sizeof text)) return 0;
  std::fprintf(stderr, "%s\n", text);
  return 1;
}
