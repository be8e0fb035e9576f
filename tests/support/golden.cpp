#include "support/golden.h"

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_PNG
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#endif
#include <stb/stb_image.h>
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

#include <cstdlib>
#include <memory>

namespace oct::test {

testing::AssertionResult looksLike(const Picture& picture, const std::string& name, Tolerance tolerance) {
  const std::string file = std::string(OCT_GOLDEN_DIR) + "/" + name + ".png";
  if (std::getenv("OCT_ACCEPT_GOLDEN")) {
    writePng(picture, file);
    return testing::AssertionFailure() << "accepted " << file << "; run again without OCT_ACCEPT_GOLDEN";
  }
  Picture golden;
  const std::unique_ptr<stbi_uc, decltype(&stbi_image_free)> rgba(
      stbi_load(file.c_str(), &golden.width, &golden.height, nullptr, 4), &stbi_image_free);
  if (!rgba) return testing::AssertionFailure() << file << " cannot be read";
  golden = Picture(golden.width, golden.height);
  for (int y = 0; y < golden.height; ++y) {
    for (int x = 0; x < golden.width; ++x) {
      const stbi_uc* const from = rgba.get() + 4 * ((golden.height - 1 - y) * golden.width + x);
      std::uint8_t* const to = golden.pixel(x, y);
      for (int c = 0; c < 3; ++c) to[2 - c] = from[c];
      to[3] = from[3];
    }
  }
  return agree(picture, golden, tolerance);
}

}  // namespace oct::test
