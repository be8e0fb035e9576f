// The hidden windows that targets draw with, as the rest of the system sees them.
#include <future>
#include <string>
#include <thread>

#include <windows.h>

#include "oct_rendering/oct_rendering.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

int windows_of_this_thread() {
  int count = 0;
  EnumThreadWindows(
      GetCurrentThreadId(),
      [](HWND window, LPARAM result) -> BOOL {
        char name[64] = {};
        GetClassNameA(window, name, sizeof name);
        if (std::string(name) == "OpenGLWindow") ++*reinterpret_cast<int*>(result);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&count));
  return count;
}

bool class_exists() {
  WNDCLASSEXA record{};
  record.cbSize = sizeof record;
  return GetClassInfoExA(GetModuleHandleA(nullptr), "OpenGLWindow", &record) != FALSE;
}

// A client's thread need not answer messages, and its end must not take a window along.
TEST(HiddenWindowGLTest, BelongsToNoThreadOfTheClients) {
  OffscreenTargetHandle target = nullptr;
  std::thread([&] {
    target = createOffscreenTarget();
    EXPECT_NE(target, nullptr);
    EXPECT_EQ(windows_of_this_thread(), 0);
    wglMakeCurrent(nullptr, nullptr);  // its end alone does not leave it to other threads everywhere
  }).join();
  EXPECT_TRUE(class_exists());
  const HWND window = FindWindowA("OpenGLWindow", nullptr);
  ASSERT_NE(window, nullptr);
  DWORD_PTR answer = 0;
  EXPECT_NE(SendMessageTimeoutA(window, WM_NULL, 0, 0, SMTO_ABORTIFHUNG, 5000, &answer), 0)
      << "nobody answers";
  clearOffscreenTarget(target);
  EXPECT_EQ(pending_error(), "(none)");
  EXPECT_FALSE(class_exists());
  for (int i = 0; i < 2; ++i) {
    target = createOffscreenTarget();
    EXPECT_EQ(pending_error(), "(none)");
    clearOffscreenTarget(target);
  }
}

}  // namespace
}  // namespace oct::test
