// One line on the error stream while something takes long. Nothing is written for little work, or when the
// error stream is not a terminal.
#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <limits>
#include <string>

#include "data/progress_function.h"

namespace oct::app {

class Progress {
 public:
  // For work that takes long whatever its samples are.
  static constexpr std::size_t unknown_length = std::numeric_limits<std::size_t>::max();

  // samples: how many are gone through, to tell little work from much.
  Progress(std::string activity, std::size_t samples);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void update(std::size_t done, std::size_t total);

 private:
  void show(const std::string& line);

  std::string activity_;
  bool active_;
  std::size_t shown_length_ = 0;
  std::chrono::steady_clock::time_point last_update_;
};

// Shows that the file is being read, to the end of the function's life.
ProgressFunction reading_progress(const std::filesystem::path& file);

}  // namespace oct::app
