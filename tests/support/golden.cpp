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

Picture readPng(const std::string& file) {
  int width = 0;
  int height = 0;
  const std::unique_ptr<stbi_uc, decltype(&stbi_image_free)> rgba(
      stbi_load(file.c_str(), &width, &height, nullptr, 4), &stbi_image_free);
  if (!rgba) return {};
  Picture picture(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const stbi_uc* const from = rgba.get() + 4 * ((height - 1 - y) * width + x);
      std::uint8_t* const to = picture.pixel(x, y);
      for (int c = 0; c < 3; ++c) to[2 - c] = from[c];
      to[3] = from[3];
    }
  }
  return picture;
}

testing::AssertionResult looksLike(const Picture& picture, const std::string& name, Tolerance tolerance) {
  const std::string file = std::string(OCT_GOLDEN_DIR) + "/" + name + ".png";
  if (std::getenv("OCT_ACCEPT_GOLDEN")) {
    writePng(picture, file);
    return testing::AssertionFailure() << "accepted " << file << "; run again without OCT_ACCEPT_GOLDEN";
  }
  const Picture golden = readPng(file);
  if (golden.bytes.empty()) return testing::AssertionFailure() << file << " cannot be read";
  return agree(picture, golden, tolerance);
}

}  // namespace oct::test
