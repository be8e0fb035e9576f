// A reader of PNG files that knows of animations and holds every byte against the format.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "data/picture.h"

namespace oct::app::test {

struct DecodedPng {
  PictureSize size;
  unsigned channels = 0;
  unsigned sample_bits = 0;
  std::map<std::string, std::string> texts;
  unsigned repetitions = 99;                      // of an animation; 0: without end
  std::vector<double> delays;                     // seconds
  std::vector<std::vector<std::uint8_t>> frames;  // of a picture one
};

// Throws a std::runtime_error where the file breaks a rule.
DecodedPng decoded_png(const std::filesystem::path& path);

}  // namespace oct::app::test
