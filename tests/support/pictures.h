// Whole pictures and how far two of them are apart.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace oct::test {

// BGRA, bottom row first, as the library reads frames back.
struct Picture {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> bytes;

  Picture() = default;
  Picture(int picture_width, int picture_height)
      : width(picture_width),
        height(picture_height),
        bytes(static_cast<std::size_t>(picture_width) * static_cast<std::size_t>(picture_height) * 4) {}

  // The pixel at column x of row y, counted from the bottom.
  std::uint8_t* pixel(int x, int y) {
    return bytes.data() +
           (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) * 4;
  }
  const std::uint8_t* pixel(int x, int y) const { return const_cast<Picture*>(this)->pixel(x, y); }
  std::array<int, 4> bgra(int x, int y) const {
    const std::uint8_t* const p = pixel(x, y);
    return {p[0], p[1], p[2], p[3]};
  }

  // Calls the action with column and row of every pixel.
  template <class Action>
  void for_each(Action&& action) const {
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) action(x, y);
    }
  }
};

struct Tolerance {
  int nearly = 1;           // levels of 255 that all but a few pixels may differ by
  double fraction = 0.999;  // share of pixels within that
  int most = 3;             // levels that no pixel exceeds
  double mean = 255.0;      // levels that all channels of all pixels may differ by on average
};

constexpr Tolerance exact{0, 1.0, 0};

// Every channel counts. A failed comparison writes both pictures as PNG files into the working folder
// and names them; of a test with several, each has its number.
testing::AssertionResult agree(const Picture& actual, const Picture& expected, Tolerance tolerance = {});

void write_png(const Picture& picture, const std::string& file);

// Without pixels when the file cannot be read.
Picture read_png(const std::string& file);

// For looks that no formula fixes, accepted by a person: compares with tests/golden/NAME.png.
// With OCT_ACCEPT_GOLDEN set in the environment the picture is written there instead, to be
// looked at before it is committed.
testing::AssertionResult looks_like(const Picture& picture, const std::string& name, Tolerance tolerance);

}  // namespace oct::test
