// Several pictures of one size, as files or as an animation.
#pragma once

#include <filesystem>
#include <memory>

#include "data/formats/png_writer.h"
#include "data/picture.h"

namespace oct::app {

struct SeriesSettings {
  std::filesystem::path output;  // .png: numbered files; .apng, .mp4, .webm, .gif: an animation
  unsigned count = 0;
  unsigned frames_per_second = 30;  // of an animation
  PngTexts texts;
};

class PictureSeries {
 public:
  virtual ~PictureSeries() = default;

  // One after the other; each is written as it comes. Throws a WriteError.
  virtual void add(const Picture& picture) = 0;
  // After the last one. An animation without it leaves no file.
  virtual void finish() = 0;
};

std::unique_ptr<PictureSeries> open_series(const SeriesSettings& settings);

}  // namespace oct::app
