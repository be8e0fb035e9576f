// Runs octrender in this process, in a folder of the test's own.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <limits>
#include <memory>
#include <sstream>
#include <utility>

#include <stb/stb_image.h>

#include "apps/test_files.h"
#include "data/picture.h"
#include "octrender/program.h"

namespace oct::app::test {

inline Picture read_picture(const std::filesystem::path& path) {
  const std::string bytes = InputFile(path).whole();
  int width = 0, height = 0, channels = 0;
  const std::unique_ptr<stbi_uc, decltype(&stbi_image_free)> pixels(
      stbi_load_from_memory(reinterpret_cast<const stbi_uc*>(bytes.data()), static_cast<int>(bytes.size()),
                            &width, &height, &channels, 3),
      stbi_image_free);
  if (!pixels) throw std::runtime_error("no picture in " + to_utf8(path));
  const PictureSize size{static_cast<unsigned>(width), static_cast<unsigned>(height)};
  return {size, {pixels.get(), pixels.get() + std::size_t{size.width} * size.height * 3}};
}

// A volume of three axes (B-scan, depth, A-scan): 1 where the condition holds for depth, A-scan and B-scan.
template <class Condition>
std::vector<float> volume_where(int depth, int a_scans, int b_scans, Condition condition) {
  std::vector<float> values;
  for (int i = 0; i < depth * a_scans * b_scans; ++i)
    values.push_back(condition(i / a_scans % depth, i % a_scans, i / a_scans / depth));
  return values;
}

class ProgramTest : public testing::Test {
 protected:
  // common: how the command lines of the class begin.
  explicit ProgramTest(std::string common) : common_(std::move(common)) {
    std::filesystem::current_path(folder_ / "");
  }
  ~ProgramTest() override { std::filesystem::current_path(before_); }

  int run(const std::string& further) { return run_bare(common_ + " " + further); }

  // Words between blanks.
  int run_bare(const std::string& words) {
    std::istringstream stream(words);
    const std::vector<std::string> arguments(std::istream_iterator<std::string>(stream), {});
    std::ostringstream error, out;
    auto* const error_before = std::cerr.rdbuf(error.rdbuf());
    auto* const out_before = std::cout.rdbuf(out.rdbuf());
    const int code = run_program(arguments);
    std::cerr.rdbuf(error_before);
    std::cout.rdbuf(out_before);
    error_text_ = error.str().substr(error.str().rfind('\r') + 1);  // progress is written over
    out_text_ = out.str();
    return code;
  }

  std::vector<std::uint8_t> draw(const std::string& further) {
    EXPECT_EQ(run(further), 0) << further << ": " << error_text_;
    return read_picture("out.png").pixels;
  }

  // Compares the whole picture: a level per pixel where it is gray, or a level per channel.
  void expect_picture(const std::string& further, unsigned width, unsigned height, std::vector<int> wanted) {
    SCOPED_TRACE(further);
    const std::vector<std::uint8_t> drawn = draw(further);
    const PictureSize size = read_picture("out.png").size;
    ASSERT_EQ(std::pair(size.width, size.height), std::pair(width, height));
    const std::size_t channels = wanted.size() == drawn.size() ? 1 : 3;  // that show one wanted level
    ASSERT_EQ(drawn.size(), wanted.size() * channels);
    for (std::size_t i = 0; i < drawn.size(); ++i) {
      // Rounding to 8 bits in the colour map, in its filtered lookup and in the framebuffer.
      EXPECT_NEAR(drawn[i], wanted[i / channels], 2) << "pixel " << i / 3 << ", channel " << i % 3;
    }
  }

  // Every one of these changes the picture that the common options draw, each to another one.
  void expect_other_pictures(const std::string& common, const std::vector<std::string>& options) {
    std::vector<std::vector<std::uint8_t>> pictures{draw(common)};
    for (const std::string& further : options) {
      pictures.push_back(draw(common + " " + further));
      EXPECT_EQ(std::ranges::count(pictures, pictures.back()), 1) << further;
    }
  }

  void expect_error(int code, const std::string& further, const std::string& words) {
    SCOPED_TRACE(further);
    EXPECT_EQ(run(further), code);
    EXPECT_EQ(error_text_.find("octrender: "), 0U) << error_text_;
    expect_in(words, error_text_);
    EXPECT_FALSE(std::filesystem::exists("out.png"));
  }

  // Each value is refused with a text that names the option.
  void expect_wrong(const std::string& option, const std::vector<std::string>& values) {
    for (const std::string& value : values) expect_error(2, option + " " + value, option);
  }

  // Red at a fraction of the picture's width and height, from the top left.
  static int red_at(double x, double y) {
    const Picture picture = read_picture("out.png");
    const auto column = static_cast<std::size_t>(x * picture.size.width);
    const auto row = static_cast<std::size_t>(y * picture.size.height);
    return picture.pixels[(row * picture.size.width + column) * 3];
  }

  std::string common_;
  std::string error_text_;
  std::string out_text_;

 private:
  const std::filesystem::path before_ = std::filesystem::current_path();
  const TemporaryFolder folder_;
};

}  // namespace oct::app::test
