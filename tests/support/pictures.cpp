#include "support/pictures.h"

#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#include <stb/stb_image.h>
#pragma GCC diagnostic pop

#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <memory>

#include <stb/stb_image_write.h>

namespace oct::test {
namespace {

std::string current_test_name() {
  const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
  std::string name = std::string(test->test_suite_name()) + "." + test->name();
  std::replace(name.begin(), name.end(), '/', '_');
  return name;
}

}  // namespace

void write_png(const Picture& picture, const std::string& file) {
  std::vector<std::uint8_t> rgba(picture.bytes.size());
  auto to = rgba.begin();
  for (int y = picture.height - 1; y >= 0; --y) {
    for (int x = 0; x < picture.width; ++x) {
      const std::uint8_t* const from = picture.pixel(x, y);
      for (const int c : {2, 1, 0, 3}) *to++ = from[c];
    }
  }
  stbi_write_png(file.c_str(), picture.width, picture.height, 4, rgba.data(), picture.width * 4);
}

testing::AssertionResult agree(const Picture& actual, const Picture& expected, Tolerance tolerance) {
  if (actual.width != expected.width || actual.height != expected.height) {
    return testing::AssertionFailure() << "sizes differ";
  }
  int worst = 0;
  std::size_t worst_at = 0;
  std::size_t far_pixels = 0;
  double sum = 0.0;
  const std::size_t pixels = actual.bytes.size() / 4;
  for (std::size_t i = 0; i < pixels; ++i) {
    int apart = 0;
    for (std::size_t c = 0; c < 4; ++c) {
      const int channel = std::abs(int{actual.bytes[i * 4 + c]} - int{expected.bytes[i * 4 + c]});
      apart = std::max(apart, channel);
      sum += channel;
    }
    if (apart > tolerance.nearly) ++far_pixels;
    if (apart > worst) {
      worst = apart;
      worst_at = i;
    }
  }
  const bool enough =
      static_cast<double>(far_pixels) <= (1.0 - tolerance.fraction) * static_cast<double>(pixels);
  const double mean = sum / static_cast<double>(actual.bytes.size());
  if (enough && worst <= tolerance.most && mean <= tolerance.mean) return testing::AssertionSuccess();

  static std::atomic<int> failures{0};
  const std::string name = current_test_name() + "." + std::to_string(++failures);
  write_png(actual, name + ".actual.png");
  write_png(expected, name + ".expected.png");
  return testing::AssertionFailure() << far_pixels << " of " << pixels << " pixels differ by more than "
                                     << tolerance.nearly << " levels, all by " << mean
                                     << " on average; the worst by " << worst << " at column "
                                     << worst_at % static_cast<std::size_t>(actual.width) << ", row "
                                     << worst_at / static_cast<std::size_t>(actual.width)
                                     << " from the bottom. See " << name << ".*.png";
}

Picture read_png(const std::string& file) {
  int width = 0;
  int height = 0;
  const std::unique_ptr<stbi_uc, decltype(&stbi_image_free)> rgba(
      stbi_load(file.c_str(), &width, &height, nullptr, 4), &stbi_image_free);
  if (!rgba) return {};
  Picture picture(width, height);
  picture.for_each([&](int x, int y) {
    const stbi_uc* from = rgba.get() + 4 * ((height - 1 - y) * width + x);
    for (const int c : {2, 1, 0, 3}) picture.pixel(x, y)[c] = *from++;
  });
  return picture;
}

testing::AssertionResult looks_like(const Picture& picture, const std::string& name, Tolerance tolerance) {
  const std::string file = std::string(OCT_GOLDEN_DIR) + "/" + name + ".png";
  if (std::getenv("OCT_ACCEPT_GOLDEN")) {
    write_png(picture, file);
    return testing::AssertionFailure() << "accepted " << file << "; run again without OCT_ACCEPT_GOLDEN";
  }
  const Picture golden = read_png(file);
  if (golden.bytes.empty()) return testing::AssertionFailure() << file << " cannot be read";
  return agree(picture, golden, tolerance);
}

}  // namespace oct::test
