// Frames rendered by OpenGL, read from the Direct3D surface. Direct3D is the machine's own.
#include "hosting/surfaces/dx9_shared_buffer_object_windows.h"

#include <array>
#include <chrono>

#include "hosting/surfaces/client_surfaces.h"
#include "hosting/surfaces/direct3d_sharing.h"
#include "hosting/loop/opengl_control.h"
#include "support/com_method_patch_windows.h"
#include "support/dx_interop_stand_in.h"
#include "support/gl_spy.h"
#include "support/process_memory.h"
#include "support/surfaces.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

class DX9SharedBufferGLTest : public testing::Test {
 protected:
  DX9SharedBufferGLTest() : interop_(InteropDevice::open(DX9Device::acquire())) {}

  // A colour for the whole frame and another for the pixel (1, 0) in OpenGL's lowest row.
  static void draw(int red, int green, int blue) {
    glClearColor(static_cast<float>(red) / 255.0F, static_cast<float>(green) / 255.0F,
                 static_cast<float>(blue) / 255.0F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_SCISSOR_TEST);
    glScissor(1, 0, 1, 1);
    glClearColor(1.0F, 1.0F, 1.0F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    glDisable(GL_SCISSOR_TEST);
  }

  static void expectFrame(DX9SharedBufferObject& buffer, int red, int green, int blue) {
    const auto mapped = buffer.map();
    const Picture picture = direct3DSurfacePicture(mapped->surface());
    EXPECT_EQ(mapped->width(), static_cast<unsigned>(picture.width));
    EXPECT_EQ(mapped->height(), static_cast<unsigned>(picture.height));
    picture.forEach([&](int x, int y) {
      const bool special = x == 1 && y == 0;
      ASSERT_EQ(picture.bgra(x, y), (special ? std::array<int, 4>{255, 255, 255, 255}
                                             : std::array<int, 4>{blue, green, red, 255}))
          << x << ", " << y;
    });
  }

  // A whole frame that comes back as it was drawn.
  static void expectGoodFrame(DX9SharedBufferObject& buffer) {
    buffer.prepare(3);
    draw(1, 2, 3);
    buffer.finish();
    expectFrame(buffer, 1, 2, 3);
  }

  TestContext context_;
  DxInteropStandIn standIn_;
  std::unique_ptr<InteropDevice> interop_;
};

TEST_F(DX9SharedBufferGLTest, FrameArrivesInTheSurface) {
  DX9SharedBufferObject buffer(interop_->device(), interop_.get(), 2);
  EXPECT_EQ(buffer.order_key(), -1);
  EXPECT_EQ(buffer.buffer_id(), 2);
  int key = 10;
  for (const auto& [width, height] : {std::pair{40, 30}, {40, 30}, {7, 90}, {301, 201}}) {
    buffer.resize(static_cast<unsigned>(width), static_cast<unsigned>(height));
    buffer.prepare(++key);
    EXPECT_EQ(standIn_.lockedObjects(), 1);
    draw(key, 100, 200);
    buffer.finish();
    EXPECT_EQ(standIn_.lockedObjects(), 0);
    EXPECT_EQ(buffer.map()->index(), static_cast<unsigned>(key));
    expectFrame(buffer, key, 100, 200);
  }
  EXPECT_EQ(standIn_.registeredObjects(), 1);
}

// Whatever the client leaves behind: a scissor would cut the blit, an unpack buffer would fill the
// fall-back's texture.
TEST_F(DX9SharedBufferGLTest, BlitFallbackWhenDepthDoesNotFit) {
  GlSpy spy;
  const gl::Buffer unpack = gl::Buffer::create();
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, unpack.get());
  DX9SharedBufferObject buffer(interop_->device(), interop_.get(), 0);
  spy.failNext("glCheckFramebufferStatus", 1, GL_FRAMEBUFFER_UNSUPPORTED);
  buffer.resize(20, 10);
  buffer.prepare(1);
  EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), static_cast<GLenum>(GL_FRAMEBUFFER_COMPLETE));
  draw(10, 20, 30);
  glEnable(GL_SCISSOR_TEST);
  buffer.finish();
  EXPECT_TRUE(glIsEnabled(GL_SCISSOR_TEST));
  expectFrame(buffer, 10, 20, 30);
  EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
  glDisable(GL_SCISSOR_TEST);
  buffer.resize(21, 11);  // the next size tries again without the fall-back
  expectGoodFrame(buffer);
}

TEST_F(DX9SharedBufferGLTest, FailedResizeIsRepairedByTheNext) {
  const struct {
    const char* function;
    int times;
    const char* message;
  } faults[] = {
      {"Share", 1, "Could not share resources. "},
      {"Register", 1, "Could not lock shared texture."},
      {"Lock", 1, "Could not lock shared texture."},
      {"Unlock", 1, "Could not unregister shared object. "},
      {"Unregister", 1, "Could not unregister shared object. "},
      {"framebuffer", 2, "Could not get shared framebuffer. Fallback failed."},
  };
  GlSpy spy;
  {
    DX9SharedBufferObject buffer(interop_->device(), interop_.get(), 0);
    buffer.resize(8, 8);
    for (const auto& fault : faults) {
      if (fault.function == std::string("framebuffer")) {
        spy.failNext("glCheckFramebufferStatus", fault.times, GL_FRAMEBUFFER_UNSUPPORTED);
      } else {
        standIn_.failNext(fault.function, fault.times);
      }
      EXPECT_EQ(failureOf([&] { buffer.resize(16, 12); }), fault.message) << fault.function;
      EXPECT_EQ(standIn_.lockedObjects(), 0) << fault.function;
      EXPECT_EQ(buffer.width(), 0U) << "the loop compares sizes and resizes again";
      buffer.resize(16, 12);
      expectGoodFrame(buffer);
    }
  }
  EXPECT_EQ(standIn_.registeredObjects(), 0);
  EXPECT_EQ(spy.liveObjects(), 0U);
}

TEST_F(DX9SharedBufferGLTest, FailedFrames) {
  DX9SharedBufferObject buffer(interop_->device(), interop_.get(), 0);
  buffer.resize(8, 8);
  standIn_.failNext("Lock");
  EXPECT_EQ(failureOf([&] { buffer.prepare(1); }), "shared texture could not be locked. ");
  buffer.prepare(2);
  standIn_.failNext("Unlock");
  EXPECT_EQ(failureOf([&] { buffer.finish(); }), "shared texture could not be unlocked. ");
  EXPECT_EQ(failureOf([&] { buffer.finish(); }), "shared texture could not be unlocked. ")
      << "no frame was begun";
  buffer.prepare(3);  // a frame whose callback throws never comes to finish
  expectGoodFrame(buffer);
}

TEST_F(DX9SharedBufferGLTest, FenceTimeOut) {
  DX9SharedBufferObject buffer(interop_->device(), interop_.get(), 0);
  buffer.resize(8, 8);
  const auto original = __glewClientWaitSync;
  for (const auto& [answer, message] :
       {std::pair<PFNGLCLIENTWAITSYNCPROC, const char*>{
            [](GLsync, GLbitfield, GLuint64) -> GLenum { return GL_TIMEOUT_EXPIRED; },
            "Rendering could not finish within one second. "},
        {[](GLsync, GLbitfield, GLuint64) -> GLenum { return 0xFFFFFFFFU; },
         "Rendering could not finish within one second. "},
        {[](GLsync, GLbitfield, GLuint64) -> GLenum { return GL_WAIT_FAILED; }, "(none)"}}) {
    buffer.prepare(1);
    __glewClientWaitSync = answer;
    EXPECT_EQ(failureOf([&] { buffer.finish(); }), message);
    __glewClientWaitSync = original;
  }
}

using CreateTexture = HRESULT(WINAPI*)(IDirect3DDevice9*, UINT, UINT, UINT, DWORD, D3DFORMAT, D3DPOOL,
                                       IDirect3DTexture9**, HANDLE*);

TEST_F(DX9SharedBufferGLTest, TextureThatDirect3DRefuses) {
  DX9SharedBufferObject buffer(interop_->device(), interop_.get(), 0);
  EXPECT_EQ(failureOf([&] { buffer.resize(100000, 8); }), "Could not generate render target. ");
  clearGLErrors();
  {
    const ComMethodPatch<CreateTexture> patch(
        interop_->device().get(), 23,
        [](IDirect3DDevice9*, UINT, UINT, UINT, DWORD, D3DFORMAT, D3DPOOL, IDirect3DTexture9**,
           HANDLE*) -> HRESULT { return D3DERR_OUTOFVIDEOMEMORY; });
    const std::string text = logOf(
        [&] { EXPECT_EQ(failureOf([&] { buffer.resize(8, 8); }), "Could not generate render target. "); });
    EXPECT_TRUE(contains(text, "An error occured when creating render target: D3DERR_OUTOFVIDEOMEMORY\n"))
        << text;
    EXPECT_EQ(failureOf([] { clientSurfaces().create(SurfaceSharing::direct3D, 8, 8); }),
              "Could not generate render target. ");
  }
  buffer.resize(8, 8);
  expectGoodFrame(buffer);
  EXPECT_STREQ(dx9ResultName(E_OUTOFMEMORY), "E_OUTOFMEMORY");
  EXPECT_STREQ(dx9ResultName(D3DERR_INVALIDCALL), "D3DERR_INVALIDCALL");
  EXPECT_STREQ(dx9ResultName(0), "D3D_OK");
  EXPECT_STREQ(dx9ResultName(E_FAIL), "Unknown Error Code");
}

TEST_F(DX9SharedBufferGLTest, TextureWithoutSurface) {
  DX9SharedBufferObject buffer(interop_->device(), interop_.get(), 0);
  const DX9Texture any = interop_->device().createTexture(4, 4);
  using GetSurfaceLevel = HRESULT(WINAPI*)(IDirect3DTexture9*, UINT, IDirect3DSurface9**);
  const ComMethodPatch<GetSurfaceLevel> patch(
      any.texture.get(), 18,
      [](IDirect3DTexture9*, UINT, IDirect3DSurface9**) -> HRESULT { return D3DERR_INVALIDCALL; });
  EXPECT_EQ(failureOf([&] { buffer.resize(8, 8); }), "Could not get surface level of shared texture. ");
  EXPECT_EQ(standIn_.registeredObjects(), 1) << "the surface comes after the registration";
}

TEST_F(DX9SharedBufferGLTest, ReasonsInTheLog) {
  DX9SharedBufferObject buffer(interop_->device(), interop_.get(), 0);
  for (const auto& [function, line] : {std::pair{"Share", std::string("Resource could not be shared. \n")},
                                       {"Register", "An error occured when creating a shared texture: " +
                                                        std::to_string(ERROR_NOT_SUPPORTED) + "\n"}}) {
    standIn_.failNext(function);
    const std::string text = logOf([&] { EXPECT_NE(failureOf([&] { buffer.resize(8, 8); }), "(none)"); });
    EXPECT_TRUE(contains(text, line)) << text;
  }
}

TEST_F(DX9SharedBufferGLTest, WithoutInteropDevice) {
  DX9SharedBufferObject buffer(interop_->device(), nullptr, 0);
  EXPECT_EQ(failureOf([&] { buffer.resize(8, 8); }), "Cannot create a texture for a null device.");
  EXPECT_EQ(failureOf([&] { buffer.prepare(1); }), "shared texture could not be locked. ");
  EXPECT_EQ(failureOf([&] { buffer.finish(); }), "shared texture could not be unlocked. ");
}

TEST_F(DX9SharedBufferGLTest, AnEndThatCannotUnregisterSaysSo) {
  testing::internal::CaptureStderr();
  {
    DX9SharedBufferObject buffer(interop_->device(), interop_.get(), 0);
    buffer.resize(8, 8);
    standIn_.failNext("Unregister");
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Could not unregister shared object. \n");
}

std::vector<std::string> calls;

// The surface is Direct3D's again before Direct3D is told to show it.
TEST_F(DX9SharedBufferGLTest, AFrameEndsWithPresent) {
  using EndScene = HRESULT(WINAPI*)(IDirect3DDevice9*);
  using Present = HRESULT(WINAPI*)(IDirect3DDevice9*, const RECT*, const RECT*, HWND, const RGNDATA*);
  DX9SharedBufferObject buffer(interop_->device(), interop_.get(), 0);
  buffer.resize(8, 8);
  calls.clear();
  static const DxInteropStandIn* standIn = nullptr;
  standIn = &standIn_;
  const ComMethodPatch<EndScene> endScene(interop_->device().get(), 42, [](IDirect3DDevice9*) -> HRESULT {
    calls.push_back(standIn->lockedObjects() == 0 ? "EndScene" : "EndScene too early");
    return D3DERR_INVALIDCALL;
  });
  const ComMethodPatch<Present> present(
      interop_->device().get(), 17,
      [](IDirect3DDevice9*, const RECT* from, const RECT* to, HWND window, const RGNDATA* region) -> HRESULT {
        calls.push_back(from || to || window || region ? "Present with arguments" : "Present");
        return D3D_OK;
      });
  buffer.prepare(1);
  EXPECT_EQ(calls, std::vector<std::string>{});
  buffer.finish();
  EXPECT_EQ(calls, (std::vector<std::string>{"EndScene", "Present"}));
}

TEST_F(DX9SharedBufferGLTest, ACopyThatDirect3DRefuses) {
  void* const surface = clientSurfaces().create(SurfaceSharing::direct3D, 16, 16);
  IDirect3DSurface9* memory = nullptr;  // no target of a stretching copy
  interop_->device().get()->CreateOffscreenPlainSurface(16, 16, D3DFMT_X8R8G8B8, D3DPOOL_SYSTEMMEM, &memory,
                                                        nullptr);
  const ComOwner<IDirect3DSurface9> owner(memory);
  EXPECT_EQ(failureOf([&] { ClientSurfaces::copy(SurfaceSharing::direct3D, surface, memory); }),
            "Could not copy the surface: D3DERR_INVALIDCALL");
  clientSurfaces().destroy(surface);
}

TEST_F(DX9SharedBufferGLTest, OpeningTheInterop) {
  standIn_.failNext("Open");
  EXPECT_EQ(openDirect3DBufferSource(), nullptr);
  {
    const auto sharing = openDirect3DBufferSource();
    const auto buffer = sharing->createBuffer(1);
    buffer->resize(4, 4);
    EXPECT_EQ(buffer->buffer_id(), 1);
  }
  interop_.reset();
  EXPECT_EQ(standIn_.openDevices(), 0);
}

// Every attempt goes to the log; the control gives up after a second.
TEST(DX9WithoutInteropGLTest, ControlFailsAfterASecond) {
  const auto start = std::chrono::steady_clock::now();
  std::string message;
  const std::string text =
      logOf([&] { message = failureOf([] { OpenGLControl control(SurfaceSharing::direct3D); }); });
  EXPECT_EQ(message, "Cannot properly create an OpenGLControl.");
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1000));
  const std::string line = "Ressouce sharing between OpenGL and DirectX not supported. \n";
  const std::size_t first = text.find(line);
  ASSERT_NE(first, std::string::npos);
  EXPECT_NE(text.find(line, first + 1), std::string::npos) << "one for each attempt";
}

struct DeviceRequest {
  UINT adapter = 99;
  D3DDEVTYPE type{};
  char windowClass[32] = {};
  DWORD flags = 0;
  D3DPRESENT_PARAMETERS parameters{};
  DWORD thread = 0, windowThread = 0;
};
DeviceRequest asked;
using CreateDeviceEx = HRESULT(WINAPI*)(IDirect3D9Ex*, UINT, D3DDEVTYPE, HWND, DWORD, D3DPRESENT_PARAMETERS*,
                                        D3DDISPLAYMODEEX*, IDirect3DDevice9Ex**);

// Nothing but the request is looked at; it is then refused.
TEST(DX9DeviceTest, IsMadeOnItsWindowsThread) {
  IDirect3D9Ex* direct3D = nullptr;
  ASSERT_TRUE(SUCCEEDED(Direct3DCreate9Ex(D3D_SDK_VERSION, &direct3D)));
  const ComOwner<IDirect3D9Ex> owner(direct3D);
  {
    const ComMethodPatch<CreateDeviceEx> patch(
        direct3D, 20,
        [](IDirect3D9Ex*, UINT adapter, D3DDEVTYPE type, HWND window, DWORD flags,
           D3DPRESENT_PARAMETERS* parameters, D3DDISPLAYMODEEX*, IDirect3DDevice9Ex**) -> HRESULT {
          asked = {adapter, type, {}, flags, *parameters, GetCurrentThreadId(), 0};
          GetClassNameA(window, asked.windowClass, sizeof asked.windowClass);
          asked.windowThread = GetWindowThreadProcessId(window, nullptr);
          return D3DERR_NOTAVAILABLE;
        });
    EXPECT_EQ(failureOf([] { DX9Device::acquire(); }), "An error occured creating the Direct 3D device. ");
  }
  EXPECT_EQ(asked.adapter, 0U);
  EXPECT_EQ(asked.type, D3DDEVTYPE_HAL);
  EXPECT_STREQ(asked.windowClass, "DirectXWindow");
  EXPECT_EQ(asked.flags, 0x46U);
  EXPECT_TRUE(asked.parameters.Windowed);
  EXPECT_EQ(asked.parameters.BackBufferFormat, D3DFMT_X8R8G8B8);
  EXPECT_EQ(static_cast<int>(asked.parameters.SwapEffect), 2);
  EXPECT_EQ(asked.parameters.BackBufferWidth + asked.parameters.BackBufferHeight, 0U);
  EXPECT_EQ(asked.thread, asked.windowThread);
  EXPECT_NE(asked.thread, GetCurrentThreadId());
  EXPECT_NE(DX9Device::acquire()->get(), nullptr) << "a failure does not stand in the way of the next";
}

// Device, window and buffers come and go; COM references are counted at the device.
TEST(DX9LifetimeGLTest, ManyLives) {
  TestContext context;
  DxInteropStandIn standIn;
  std::size_t handles = 0, threads = 0;
  for (int i = 0; i < 30; ++i) {
    const auto sharing = openDirect3DBufferSource();
    const auto buffer = sharing->createBuffer(0);
    buffer->resize(64, 64);
    buffer->prepare(i);
    buffer->finish();
    if (i == 9) handles = handleCount(), threads = threadCount();
  }
  EXPECT_LE(handleCount(), handles + 3);
  EXPECT_LE(threadCount(), threads);
  EXPECT_EQ(standIn.registeredObjects(), 0);
  const std::shared_ptr<DX9Device> device = DX9Device::acquire();
  device->get()->AddRef();
  EXPECT_EQ(device->get()->Release(), 1U);
}

}  // namespace
}  // namespace oct::test
