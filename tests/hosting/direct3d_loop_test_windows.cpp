// Loops whose frames are Direct3D surfaces: several at once, and when the device is removed.
#include "hosting/surfaces/client_surfaces.h"
#include "hosting/surfaces/dx9_device_windows.h"
#include "support/com_method_patch_windows.h"
#include "support/dx_interop_stand_in.h"
#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

constexpr SurfaceSharing direct3d = SurfaceSharing::direct3d;

class Direct3DLoopGLTest : public LoopGLTest {
 protected:
  // A frame of the loop comes back with its pixels.
  void expect_frame(OpenGLControlLoop& loop, std::uint32_t id) {
    Recorded<Picture> pictures;
    loop.set_image_ready_callback(
        image_ready([&](Index, void* surface) { pictures.add(direct3d_surface_picture(surface)); }));
    loop.request(static_cast<std::int32_t>(id));
    const auto pictures_shown = pictures.at_least(1);
    ASSERT_EQ(pictures_shown.size(), 1U);
    EXPECT_TRUE(agree(pictures_shown[0], pattern_picture(id, 8, 6), exact));
    loop.set_image_ready_callback({});
  }
};

// They share one use of the interop, which ends with the last of them.
TEST_P(Direct3DLoopGLTest, SeveralLoopsComeAndGo) {
  auto first = make_recording_loop(8, 6);
  auto second = make_recording_loop(8, 6);
  expect_frame(*first, 1);
  expect_frame(*second, 2);
  EXPECT_EQ(installed_stand_in().open_devices(), 1);
  first.reset();  // has opened it
  expect_frame(*second, 3);
  first = make_recording_loop(8, 6);
  second.reset();
  expect_frame(*first, 4);
  first.reset();
  EXPECT_EQ(installed_stand_in().open_devices(), 0);
  expect_frame(*make_recording_loop(8, 6), 5);
  on_threads(4, [&](int id) {
    for (int i = 0; i < 5; ++i) make_recording_loop(8, 6)->request(id);
  });
  EXPECT_EQ(installed_stand_in().open_devices(), 0);
  EXPECT_EQ(errors_.all(), std::vector<std::string>{});
}

IDirect3DDevice9Ex* removed = nullptr;
HRESULT removed_state = D3D_OK;
using CheckDeviceState = HRESULT(WINAPI*)(IDirect3DDevice9Ex*, HWND);

// However the loop notices it, the client is told the same. The next loop gets a device of its own, although the
// client still holds a surface of the old one.
TEST_P(Direct3DLoopGLTest, ADeviceIsRemoved) {
  const struct {
    HRESULT state;
    const char* name;
    const char* failing;  // function of the interop
  } removals[] = {{D3DERR_DEVICEREMOVED, "D3DERR_DEVICEREMOVED (0x88760870)", ""},
                  {D3DERR_DEVICEHUNG, "D3DERR_DEVICEHUNG (0x88760874)", "Lock"},
                  {D3DERR_DEVICELOST, "D3DERR_DEVICELOST (0x88760868)", "Unlock"}};
  const char* const gone = "The graphics device was removed. ";
  for (const auto& removal : removals) {
    SCOPED_TRACE(removal.name);
    auto loop = make_recording_loop(8, 6);
    expect_frame(*loop, 1);
    void* const kept = client_surfaces().create(direct3d, 8, 6);
    {
      const auto device = DX9Device::acquire();
      removed = device->get();
    }
    removed_state = removal.state;
    const ComMethodPatch<CheckDeviceState> patch(removed, 128,
                                                 [](IDirect3DDevice9Ex* device, HWND) -> HRESULT {
                                                   return device == removed ? removed_state : D3D_OK;
                                                 });
    installed_stand_in().fail_next(removal.failing);
    const std::string text = log_of([&] {
      loop->request(2);
      EXPECT_EQ(errors_.at_least(1), std::vector<std::string>{gone});
      EXPECT_EQ(failure_of([&] { client_surfaces().create(direct3d, 8, 6); }), gone);
      loop.reset();
    });
    EXPECT_TRUE(contains(text, removal.name)) << text;
    errors_.clear();

    loop = make_recording_loop(8, 6);
    expect_frame(*loop, 3);
    void* const other = client_surfaces().create(direct3d, 16, 12);
    EXPECT_EQ(failure_of([&] { client_surfaces().copy(direct3d, kept, other); }),
              "Could not copy the surface: the two belong to different Direct3D devices. ");
    loop->set_image_ready_callback(
        image_ready([&](Index, void* frame) { client_surfaces().copy(direct3d, frame, other); }));
    loop->request(4);
    returned_.clear();
    loop.reset();
    EXPECT_EQ(errors_.all(), std::vector<std::string>{});
    client_surfaces().destroy(other);
    client_surfaces().destroy(kept);
  }
}

INSTANTIATE_TEST_SUITE_P(Hosting, Direct3DLoopGLTest, testing::Values(direct3d), sharing_name);

TEST(ClientSurfacesTest, OnlyKnownSurfacesOfTheKindAreCopied) {
  choose_sharing(direct3d);
  const auto device = keep_direct3d(direct3d);
  ClientSurfaces& surfaces = client_surfaces();
  void* const host = surfaces.create(SurfaceSharing::host_memory, 4, 4);
  void* const shared = surfaces.create(direct3d, 4, 4);
  const char* const other_kind = "The surface is of another kind than those of the loop. ";
  int unknown = 0;
  for (const auto& [kind, source, destination, message] :
       {std::tuple{direct3d, host, shared, other_kind},
        {direct3d, shared, host, other_kind},
        {SurfaceSharing::host_memory, shared, host, other_kind},
        {SurfaceSharing::host_memory, host, shared, other_kind},
        {direct3d, static_cast<void*>(&unknown), shared, "The specified surface is unknown. "}}) {
    EXPECT_EQ(failure_of([&, kind = kind, source = source, destination = destination] {
                surfaces.copy(kind, source, destination);
              }),
              message);
  }
  surfaces.copy(direct3d, shared, shared);
  surfaces.destroy(host);
  surfaces.destroy(shared);
}

}  // namespace
}  // namespace oct::test
