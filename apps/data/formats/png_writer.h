// Writes pictures as PNG, and several as one animated PNG.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "data/formats/output_file.h"
#include "data/picture.h"

namespace oct::app {

// Shown by viewers beside the picture. The key is one of the format's, such as "Software" or "Comment"; the text is UTF-8.
struct PngText {
  std::string key;
  std::string text;
};
using PngTexts = std::vector<PngText>;

// Pixels as they lie in the file: rows from the top, samples of 16 bits with the higher byte first.
struct PngPixels {
  PictureSize size;
  unsigned channels = 3;     // 1 gray, 3 red, green, blue, 4 with alpha, which multiplies nothing
  unsigned sample_bits = 8;  // or 16
  std::span<const std::uint8_t> bytes;
};

// When this fails, what was there before stays as it was.
void write_png(const std::filesystem::path& path, const PngPixels& pixels, const PngTexts& texts = {});
void write_png(const std::filesystem::path& path, const Picture& picture, const PngTexts& texts = {});

// Pictures of one size that a viewer shows one after the other, without end; a viewer that does not know of them shows the
// first. One picture at a time is in memory.
class AnimatedPng {
 public:
  AnimatedPng(std::filesystem::path path, unsigned count, unsigned frames_per_second, PngTexts texts);

  void add(const Picture& picture);
  void finish();  // after the last one; without it there is no file

 private:
  OutputFile file_;
  const unsigned count_;
  const unsigned frames_per_second_;
  const PngTexts texts_;
  std::uint32_t sequence_ = 0;
  bool started_ = false;
};

}  // namespace oct::app
