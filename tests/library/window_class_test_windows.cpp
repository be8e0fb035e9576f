// The class of the hidden windows as the system knows it.
#include <windows.h>
#include <gtest/gtest.h>

#include "library/dynamic_library.h"
#include "oct_rendering/oct_rendering.h"

namespace oct::test {
namespace {

// Registered for the whole program it would meet the class of a second copy of the library, and stay behind with a
// window function that is unloaded.
TEST(WindowClassGLTest, BelongsToTheLibrary) {
  const DynamicLibrary library(OCT_LIBRARY_FILE);
  const HMODULE module = GetModuleHandleA(OCT_LIBRARY_FILE);
  ASSERT_NE(module, nullptr);
  const auto known_to = [](HMODULE owner) {
    WNDCLASSEXA record{};
    record.cbSize = sizeof record;
    return GetClassInfoExA(owner, "OpenGLWindow", &record) != FALSE;
  };
  library.function<decltype(prepareOpenGL)>("prepareOpenGL")();
  EXPECT_TRUE(known_to(module));
  EXPECT_FALSE(known_to(GetModuleHandleA(nullptr)));
  library.function<decltype(finishOpenGL)>("finishOpenGL")();
  EXPECT_FALSE(known_to(module));
}

}  // namespace
}  // namespace oct::test
