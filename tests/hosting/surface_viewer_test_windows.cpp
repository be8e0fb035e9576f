// The viewer example as it is, with the stand-in for the interop: its window, its mouse and what it shows.
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <thread>

#include <windows.h>

#include "support/pictures.h"
#include "support/surfaces.h"
#include "support/test_context.h"

int viewer_main(int argc, char** argv);  // the example's main

namespace oct::test {
namespace {

class SurfaceViewerGLTest : public testing::Test {
 protected:
  void SetUp() override {
    choose_sharing(SurfaceSharing::direct3d);
    viewer_ = std::thread([this] {
      char name[] = "viewer";
      char file[] = "viewer.png";
      char* arguments[] = {name, file};
      status_ = viewer_main(2, arguments);
    });
    wait_for_frame(1);
  }
  void TearDown() override {
    PostMessageA(window_, WM_CLOSE, 0, 0);
    viewer_.join();
    EXPECT_EQ(status_, 0);
  }

  // The window's title counts the frames.
  void wait_for_frame(int count) {
    int shown = 0;
    for (int patience = 0; patience < 3000 && shown < count; ++patience) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
      window_ = FindWindowA("SurfaceViewer", nullptr);
      char title[64] = {};
      if (window_) GetWindowTextA(window_, title, sizeof title);
      const char* const number = std::strrchr(title, ' ');
      shown = number ? std::atoi(number) : 0;
    }
    ASSERT_GE(shown, count);
  }

  // What the window shows; kept for somebody to look at.
  Picture shown(const std::string& name) {
    SendMessageA(window_, WM_KEYDOWN, 'S', 0);
    const std::string file = "viewer_" + name + ".png";
    std::filesystem::rename("viewer.png", file);
    return read_png(file);
  }

  static double share(const Picture& picture, const std::function<bool(int x, int y)>& counts) {
    int count = 0;
    picture.for_each([&](int x, int y) { count += counts(x, y); });
    return static_cast<double>(count) / (picture.width * picture.height);
  }
  static bool differ(const std::uint8_t* a, const std::uint8_t* b) { return std::memcmp(a, b, 3) != 0; }
  static double drawn(const Picture& picture) {
    return share(picture, [&](int x, int y) { return differ(picture.pixel(x, y), picture.pixel(0, 0)); });
  }

  HWND window_ = nullptr;
  std::thread viewer_;
  int status_ = -1;
};

TEST_F(SurfaceViewerGLTest, TurnsAndZoomsAVolume) {
  const Picture first = shown("first");
  ASSERT_EQ(first.width, 640);
  ASSERT_EQ(first.height, 480);
  EXPECT_GT(drawn(first), 0.1);
  EXPECT_LT(drawn(first), 0.9);
  // Upright: the bright layer is on top.
  const auto brightness = [&](int from, int to) {
    int sum = 0;
    for (int y = from; y < to; ++y) sum += first.pixel(320, y)[2];
    return sum;
  };
  EXPECT_GT(brightness(240, 480), brightness(0, 240));

  PostMessageA(window_, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(200, 200));
  PostMessageA(window_, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(300, 170));
  PostMessageA(window_, WM_LBUTTONUP, 0, MAKELPARAM(300, 170));
  wait_for_frame(2);
  const Picture turned = shown("turned");
  EXPECT_GT(share(turned, [&](int x, int y) { return differ(turned.pixel(x, y), first.pixel(x, y)); }), 0.05);

  PostMessageA(window_, WM_MOUSEWHEEL, MAKEWPARAM(0, 3 * WHEEL_DELTA), MAKELPARAM(300, 170));
  wait_for_frame(3);
  EXPECT_GT(drawn(shown("closer")), drawn(turned) * 1.2);
}

}  // namespace
}  // namespace oct::test
