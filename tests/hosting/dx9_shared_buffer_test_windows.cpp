// Frames rendered by OpenGL, read from the Direct3D surface. Direct3D is the machine's own.
#include <chrono>
#include <cstring>
#include <utility>

#include "hosting/loop/opengl_control.h"
#include "hosting/surfaces/client_surfaces.h"
#include "hosting/surfaces/dx9_shared_buffer_object_windows.h"
#include "support/com_method_patch_windows.h"
#include "support/dx_interop_stand_in.h"
#include "support/gl_spy.h"
#include "support/surfaces.h"
#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

class DX9SharedBufferGLTest : public testing::Test {
 protected:
  DX9SharedBufferGLTest() : interop_(InteropDevice::open(DX9Device::acquire())) {}
  void TearDown() override { EXPECT_EQ(stand_in_.take_faults(), std::vector<std::string>{}); }

  // A whole frame that comes back as it was drawn; true if the client's scissor is on at its end.
  static bool expect_good_frame(DX9SharedBufferObject& buffer, bool client_scissor = false) {
    buffer.prepare(3);
    draw_pattern(0x102030);
    if (client_scissor) glEnable(GL_SCISSOR_TEST);
    buffer.finish();
    const bool scissor = glIsEnabled(GL_SCISSOR_TEST);
    glDisable(GL_SCISSOR_TEST);
    const Picture picture = direct3d_surface_picture(buffer.map()->surface());
    EXPECT_TRUE(agree(picture, pattern_picture(0x102030, picture.width, picture.height), exact));
    return scissor;
  }

  TestContext context_;
  DxInteropStandIn stand_in_;
  std::unique_ptr<InteropDevice> interop_;
  DX9SharedBufferObject buffer_{interop_->device(), interop_.get(), 2};
};

TEST_F(DX9SharedBufferGLTest, AFrameIsLockedFromPrepareToFinish) {
  EXPECT_EQ(buffer_.order_key(), -1);
  EXPECT_EQ(buffer_.buffer_id(), 2);
  int key = 10;
  for (const auto& [width, height] : {std::pair{40U, 30U}, {7U, 90U}}) {
    buffer_.resize(width, height);
    buffer_.prepare(++key);
    EXPECT_EQ(stand_in_.locked_objects(), 1);
    buffer_.finish();
    EXPECT_EQ(stand_in_.locked_objects(), 0);
    EXPECT_EQ(buffer_.map()->index(), static_cast<unsigned>(key));
    EXPECT_EQ(buffer_.map()->width(), width);
    EXPECT_EQ(buffer_.map()->height(), height);
    expect_good_frame(buffer_);
  }
  EXPECT_EQ(stand_in_.registered_objects(), 1);
}

// Whatever the client leaves behind: a scissor would cut the blit, an unpack buffer would fill the
// fall-back's texture.
TEST_F(DX9SharedBufferGLTest, BlitFallbackWhenDepthDoesNotFit) {
  GlSpy spy;
  const gl::Buffer unpack = gl::Buffer::create();
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, unpack.get());
  spy.fail_next("glCheckFramebufferStatus", 1, GL_FRAMEBUFFER_UNSUPPORTED);
  buffer_.resize(20, 10);
  EXPECT_TRUE(expect_good_frame(buffer_, true));
  EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
  buffer_.resize(21, 11);  // the next size tries again without the fall-back
  expect_good_frame(buffer_);
}

TEST_F(DX9SharedBufferGLTest, FailedResizeIsRepairedByTheNext) {
  const std::string not_shared = "An error occured when creating a shared texture: ";
  const struct {
    std::string function;
    const char* message;
    std::string log;
  } faults[] = {
      {"Share", "Could not share resources. ", "Resource could not be shared. \n"},
      {"Register", "Could not lock shared texture.", not_shared + std::to_string(ERROR_NOT_SUPPORTED) + "\n"},
      {"Lock", "Could not lock shared texture.", ""},
      {"Unlock", "Could not unregister shared object. ", ""},
      {"Unregister", "Could not unregister shared object. ", ""},
      {"framebuffer", "Could not get shared framebuffer. Fallback failed.", ""},
  };
  GlSpy spy;
  buffer_.resize(8, 8);
  const std::size_t objects = spy.live_objects();
  for (const auto& fault : faults) {
    SCOPED_TRACE(fault.function);
    stand_in_.fail_next(fault.function);
    if (fault.function == "framebuffer") {
      spy.fail_next("glCheckFramebufferStatus", 2, GL_FRAMEBUFFER_UNSUPPORTED);
    }
    const std::string text =
        log_of([&] { EXPECT_EQ(failure_of([&] { buffer_.resize(16, 12); }), fault.message); });
    EXPECT_TRUE(contains(text, fault.log)) << text;
    EXPECT_EQ(stand_in_.locked_objects(), fault.function == "Unlock" ? 1 : 0);
    EXPECT_EQ(buffer_.width(), 0U) << "the loop compares sizes and resizes again";
    buffer_.resize(16, 12);
    expect_good_frame(buffer_);
    EXPECT_EQ(stand_in_.registered_objects(), 1);
    EXPECT_EQ(spy.live_objects(), objects);
  }
  DX9SharedBufferObject alone(interop_->device(), nullptr, 0);
  EXPECT_EQ(failure_of([&] { alone.resize(8, 8); }), "Cannot create a texture for a null device.");
}

// What cannot be unlocked now is unlocked when it is tried again: by the next frame, or by the buffer's end.
TEST_F(DX9SharedBufferGLTest, FailedFrames) {
  const char* const not_locked = "shared texture could not be locked. ";
  const char* const not_unlocked = "shared texture could not be unlocked. ";
  EXPECT_EQ(failure_of([&] { buffer_.prepare(1); }), not_locked) << "no size";
  buffer_.resize(8, 8);
  EXPECT_EQ(failure_of([&] { buffer_.finish(); }), not_unlocked) << "no frame was begun";
  stand_in_.fail_next("Lock");
  std::string text = log_of([&] { EXPECT_EQ(failure_of([&] { buffer_.prepare(1); }), not_locked); });
  EXPECT_TRUE(contains(text, "could not be locked: " + std::to_string(ERROR_LOCK_FAILED))) << text;
  buffer_.prepare(2);
  stand_in_.fail_next("Unlock");
  text = log_of([&] { EXPECT_EQ(failure_of([&] { buffer_.finish(); }), not_unlocked); });
  EXPECT_TRUE(contains(text, "could not be unlocked: " + std::to_string(ERROR_NOT_LOCKED))) << text;
  EXPECT_EQ(stand_in_.locked_objects(), 1);
  expect_good_frame(buffer_);
  buffer_.prepare(3);  // a frame whose callback throws never comes to finish
  expect_good_frame(buffer_);
  buffer_.prepare(4);
  stand_in_.fail_next("Unlock");
  EXPECT_EQ(failure_of([&] { buffer_.finish(); }), not_unlocked);
  buffer_.release();
  EXPECT_EQ(stand_in_.locked_objects() + stand_in_.registered_objects(), 0);
}

GLenum wait_answer = 0;

TEST_F(DX9SharedBufferGLTest, FenceTimeOut) {
  buffer_.resize(8, 8);
  const auto original = __glewClientWaitSync;
  for (const GLenum answer : {GLenum{GL_TIMEOUT_EXPIRED}, 0xFFFFFFFFU, GLenum{GL_WAIT_FAILED}}) {
    wait_answer = answer;
    buffer_.prepare(1);
    __glewClientWaitSync = [](GLsync, GLbitfield, GLuint64) { return wait_answer; };
    EXPECT_EQ(failure_of([&] { buffer_.finish(); }),
              answer == GL_WAIT_FAILED ? "(none)" : "Rendering could not finish within one second. ");
    __glewClientWaitSync = original;
  }
  // Without a fence the frame has passed as well, and leaves no error to the next.
  const auto make = std::exchange(__glewFenceSync, [](GLenum, GLbitfield) -> GLsync { return nullptr; });
  expect_good_frame(buffer_);
  __glewFenceSync = make;
  EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

using CreateTexture = HRESULT(WINAPI*)(IDirect3DDevice9*, UINT, UINT, UINT, DWORD, D3DFORMAT, D3DPOOL,
                                       IDirect3DTexture9**, HANDLE*);

TEST_F(DX9SharedBufferGLTest, WhatDirect3DRefuses) {
  const char* const no_target = "Could not generate render target. ";
  EXPECT_EQ(failure_of([&] { buffer_.resize(100000, 8); }), no_target);
  clear_gl_errors();
  {
    const ComMethodPatch<CreateTexture> patch(
        interop_->device().get(), 23,
        [](IDirect3DDevice9*, UINT, UINT, UINT, DWORD, D3DFORMAT, D3DPOOL, IDirect3DTexture9**,
           HANDLE*) -> HRESULT { return D3DERR_OUTOFVIDEOMEMORY; });
    const std::string text = log_of([&] { EXPECT_EQ(failure_of([&] { buffer_.resize(8, 8); }), no_target); });
    EXPECT_TRUE(contains(text, "An error occured when creating render target: D3DERR_OUTOFVIDEOMEMORY\n"))
        << text;
    EXPECT_EQ(failure_of([] { client_surfaces().create(SurfaceSharing::direct3d, 8, 8); }), no_target);
  }
  {
    const DX9Texture any = interop_->device().create_texture(4, 4);
    using GetSurfaceLevel = HRESULT(WINAPI*)(IDirect3DTexture9*, UINT, IDirect3DSurface9**);
    const ComMethodPatch<GetSurfaceLevel> patch(
        any.texture.get(), 18,
        [](IDirect3DTexture9*, UINT, IDirect3DSurface9**) -> HRESULT { return D3DERR_INVALIDCALL; });
    EXPECT_EQ(failure_of([&] { buffer_.resize(8, 8); }), "Could not get surface level of shared texture. ");
    EXPECT_EQ(stand_in_.registered_objects(), 1) << "the surface comes after the registration";
  }
  buffer_.resize(8, 8);
  expect_good_frame(buffer_);
  {
    void* const from = client_surfaces().create(SurfaceSharing::direct3d, 16, 16);
    void* const to = client_surfaces().create(SurfaceSharing::direct3d, 8, 8);
    using StretchRect = HRESULT(WINAPI*)(IDirect3DDevice9*, IDirect3DSurface9*, const RECT*,
                                         IDirect3DSurface9*, const RECT*, D3DTEXTUREFILTERTYPE);
    const ComMethodPatch<StretchRect> patch(
        interop_->device().get(), 34,
        [](IDirect3DDevice9*, IDirect3DSurface9*, const RECT*, IDirect3DSurface9*, const RECT*,
           D3DTEXTUREFILTERTYPE) -> HRESULT { return D3DERR_DEVICEREMOVED; });
    EXPECT_EQ(failure_of([&] { client_surfaces().copy(SurfaceSharing::direct3d, from, to); }),
              "Could not copy the surface: D3DERR_DEVICEREMOVED (0x88760870)");
    client_surfaces().destroy(from);
    client_surfaces().destroy(to);
  }
  for (const auto& [code, name] : {std::pair{E_OUTOFMEMORY, "E_OUTOFMEMORY"},
                                   {D3DERR_INVALIDCALL, "D3DERR_INVALIDCALL"},
                                   {D3D_OK, "D3D_OK"},
                                   {E_FAIL, "Unknown Error Code"}}) {
    EXPECT_STREQ(dx9_result_name(code), name);
  }
}

std::vector<std::string> calls;

// The surface is Direct3D's again before Direct3D is told to show it.
TEST_F(DX9SharedBufferGLTest, AFrameEndsWithPresent) {
  using EndScene = HRESULT(WINAPI*)(IDirect3DDevice9*);
  using Present = HRESULT(WINAPI*)(IDirect3DDevice9*, const RECT*, const RECT*, HWND, const RGNDATA*);
  buffer_.resize(8, 8);
  calls.clear();
  static const DxInteropStandIn* stand_in = nullptr;
  stand_in = &stand_in_;
  const ComMethodPatch<EndScene> end_scene(interop_->device().get(), 42, [](IDirect3DDevice9*) -> HRESULT {
    calls.push_back(stand_in->locked_objects() == 0 ? "EndScene" : "EndScene too early");
    return D3DERR_INVALIDCALL;
  });
  const ComMethodPatch<Present> present(
      interop_->device().get(), 17,
      [](IDirect3DDevice9*, const RECT* from, const RECT* to, HWND window, const RGNDATA* region) -> HRESULT {
        calls.push_back(from || to || window || region ? "Present with arguments" : "Present");
        return calls.size() > 4 ? D3DERR_INVALIDCALL : D3D_OK;
      });
  const std::string text = log_of([&] {
    for (int frame = 0; frame < 4; ++frame) {
      buffer_.prepare(1);
      EXPECT_EQ(calls.size(), static_cast<std::size_t>(frame) * 2);
      buffer_.finish();
    }
  });
  EXPECT_EQ(calls, (std::vector<std::string>{"EndScene", "Present", "EndScene", "Present", "EndScene",
                                             "Present", "EndScene", "Present"}));
  EXPECT_EQ(text, "Present answered D3DERR_INVALIDCALL (0x8876086C)\n") << "a new answer, once";
}

TEST(DX9BufferSourceGLTest, OpensAndClosesTheInterop) {
  const TestContext context;
  DxInteropStandIn stand_in;
  GlSpy spy;
  const auto open = surface_kind(SurfaceSharing::direct3d).open_source;
  stand_in.fail_next("Open");
  const std::string text = log_of([&] { EXPECT_EQ(open(), nullptr); });
  EXPECT_TRUE(contains(text, "The driver does not open the interop with Direct3D: 110\n")) << text;
  for (const bool fails : {false, true}) {
    testing::internal::CaptureStderr();
    {
      const auto source = open();
      const auto buffer = source->create_buffer(1, gl::PixelFormat::bgra);
      EXPECT_EQ(buffer->buffer_id(), 1);
      buffer->resize(4, 4);
      EXPECT_EQ(stand_in.registered_objects(), 1);
      if (fails) stand_in.fail_next("Unregister");
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), fails ? "Could not unregister shared object. \n" : "");
  }
  EXPECT_EQ(stand_in.open_devices(), 0);
  EXPECT_EQ(spy.live_objects(), 0U);
  EXPECT_EQ(stand_in.take_faults(), std::vector<std::string>{});
}

using CreateDeviceEx = HRESULT(WINAPI*)(IDirect3D9Ex*, UINT, D3DDEVTYPE, HWND, DWORD, D3DPRESENT_PARAMETERS*,
                                        D3DDISPLAYMODEEX*, IDirect3DDevice9Ex**);

class DX9DeviceGLTest : public testing::Test {
 protected:
  DX9DeviceGLTest() {
    IDirect3D9Ex* direct3d = nullptr;
    EXPECT_TRUE(SUCCEEDED(Direct3DCreate9Ex(D3D_SDK_VERSION, &direct3d)));
    direct3d_.reset(direct3d);
    requested.clear();
  }

  static inline std::vector<UINT> requested;  // adapters that a device was asked for
  ComOwner<IDirect3D9Ex> direct3d_;
};

// Every attempt goes to the log; the control gives up after a second. Nobody makes a device that nobody can use.
TEST_F(DX9DeviceGLTest, WithoutInteropControlsFailAfterASecond) {
  const ComMethodPatch<CreateDeviceEx> patch(
      direct3d_.get(), 20,
      [](IDirect3D9Ex*, UINT adapter, D3DDEVTYPE, HWND, DWORD, D3DPRESENT_PARAMETERS*, D3DDISPLAYMODEEX*,
         IDirect3DDevice9Ex**) -> HRESULT {
        requested.push_back(adapter);
        return D3DERR_NOTAVAILABLE;
      });
  const auto start = std::chrono::steady_clock::now();
  std::string message;
  const std::string text =
      log_of([&] { message = failure_of([] { OpenGLControl control(SurfaceSharing::direct3d); }); });
  EXPECT_EQ(message, "Cannot properly create an OpenGLControl.");
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1000));
  const std::string line = "Ressouce sharing between OpenGL and DirectX not supported. \n";
  const std::size_t first = text.find(line);
  ASSERT_NE(first, std::string::npos);
  EXPECT_NE(text.find(line, first + 1), std::string::npos) << "one for each attempt";
  const std::size_t renderer = text.find(", renderer: ");
  EXPECT_LT(renderer, first);
  EXPECT_EQ(text.find(", renderer: ", renderer + 1), std::string::npos) << "once";
  EXPECT_EQ(failure_of([] { client_surfaces().create(SurfaceSharing::direct3d, 8, 8); }) + "\n", line);
  EXPECT_EQ(requested, std::vector<UINT>{});
}

DWORD caller = 0;

// Nothing but the request is looked at; it is then refused.
TEST_F(DX9DeviceGLTest, IsMadeOnItsWindowsThread) {
  caller = GetCurrentThreadId();
  {
    const ComMethodPatch<CreateDeviceEx> patch(
        direct3d_.get(), 20,
        [](IDirect3D9Ex*, UINT adapter, D3DDEVTYPE type, HWND window, DWORD flags,
           D3DPRESENT_PARAMETERS* parameters, D3DDISPLAYMODEEX*, IDirect3DDevice9Ex**) -> HRESULT {
          requested.push_back(adapter);
          EXPECT_EQ(type, D3DDEVTYPE_HAL);
          EXPECT_EQ(flags, 0x46U);
          EXPECT_TRUE(parameters->Windowed);
          EXPECT_EQ(parameters->BackBufferFormat, D3DFMT_X8R8G8B8);
          EXPECT_EQ(static_cast<int>(parameters->SwapEffect), 2);
          EXPECT_EQ(parameters->BackBufferWidth + parameters->BackBufferHeight, 0U);
          char window_class[32] = {};
          GetClassNameA(window, window_class, sizeof window_class);
          EXPECT_STREQ(window_class, "DirectXWindow");
          EXPECT_EQ(GetWindowThreadProcessId(window, nullptr), GetCurrentThreadId());
          EXPECT_NE(GetCurrentThreadId(), caller);
          return D3DERR_NOTAVAILABLE;
        });
    EXPECT_EQ(failure_of([] { DX9Device::acquire(); }), "An error occured creating the Direct 3D device. ");
  }
  EXPECT_EQ(requested, std::vector<UINT>{0});
  EXPECT_NE(DX9Device::acquire()->get(), nullptr) << "a failure does not stand in the way of the next";
}

std::uint64_t luid = 0;  // what OpenGL tells

// On a machine with two adapters Direct3D takes the one that OpenGL draws with.
TEST_F(DX9DeviceGLTest, IsThatOfOpenGLsAdapter) {
  const TestContext context;
  const DxInteropStandIn stand_in;
  using GetAdapterCount = UINT(WINAPI*)(IDirect3D9Ex*);
  using GetAdapterLuid = HRESULT(WINAPI*)(IDirect3D9Ex*, UINT, LUID*);
  static IDirect3D9Ex* first = nullptr;  // for all adapters: this machine has one
  first = direct3d_.get();
  const ComMethodPatch<GetAdapterCount> count(first, 4, [](IDirect3D9Ex*) { return UINT{2}; });
  const ComMethodPatch<GetAdapterLuid> luids(first, 21,
                                             [](IDirect3D9Ex*, UINT adapter, LUID* result) -> HRESULT {
                                               *result = {adapter + 10, 1};
                                               return D3D_OK;
                                             });
  const ComMethodPatch<CreateDeviceEx> create(
      first, 20,
      [](IDirect3D9Ex*, UINT adapter, D3DDEVTYPE, HWND, DWORD, D3DPRESENT_PARAMETERS*, D3DDISPLAYMODEEX*,
         IDirect3DDevice9Ex**) -> HRESULT {
        requested.push_back(adapter);
        return D3DERR_NOTAVAILABLE;
      });
  const auto tells = std::exchange(__GLEW_EXT_memory_object_win32, GL_TRUE);
  const auto query = std::exchange(__glewGetUnsignedBytevEXT, [](GLenum name, GLubyte* bytes) {
    if (name == GL_DEVICE_LUID_EXT) std::memcpy(bytes, &luid, sizeof luid);
  });
  std::string text;
  for (const std::uint64_t told : {0x10000000AULL, 0x10000000BULL, 0x10000000CULL, 0ULL}) {
    luid = told;
    text += log_of([] { surface_kind(SurfaceSharing::direct3d).open_source(); });
  }
  __GLEW_EXT_memory_object_win32 = tells;
  __glewGetUnsignedBytevEXT = query;
  EXPECT_EQ(requested, (std::vector<UINT>{0, 1, 0, 0}));
  for (const char* const part :
       {"Direct3D adapter 1: ", ", identifier 0x10000000B\n",
        "Direct3D does not have OpenGL's adapter, 0x10000000C; it takes the first. \n"}) {
    EXPECT_TRUE(contains(text, part)) << part << " in\n" << text;
  }
}

}  // namespace
}  // namespace oct::test
